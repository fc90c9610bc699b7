#include "platform/fault_point.h"

int g_faultsListening = 0;

namespace {

unsigned g_mask = 0;
uint64_t g_failAt = 0;
uint64_t g_calls = 0;
unsigned g_struck = 0;

}  // namespace

int CountFaultCall(FaultSite site)
{
    if ((g_mask & site) == 0) return 0;
    if (++g_calls != g_failAt) return 0;
    g_struck = site;
    return 1;
}

void ListenForFaults(unsigned mask, uint64_t failAt)
{
    g_mask = mask;
    g_failAt = failAt;
    g_calls = 0;
    g_struck = 0;
    g_faultsListening = 1;
}

uint64_t StopListening(unsigned *struck)
{
    g_faultsListening = 0;
    if (struck != nullptr) *struck = g_struck;
    return g_calls;
}
