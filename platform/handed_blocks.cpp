#include "platform/handed_blocks.h"

#include <cstdlib>
#include <mutex>

namespace {

std::mutex g_lock;
const void **g_blocks = nullptr;
size_t g_count = 0;
size_t g_capacity = 0;

// The index of data, or g_count when it isn't recorded. g_lock is held.
size_t IndexOf(const void *data)
{
    size_t i = 0;
    while (i < g_count && g_blocks[i] != data) i++;
    return i;
}

int Grow()
{
    size_t capacity = g_capacity == 0 ? 16 : g_capacity * 2;
    void *grown = std::realloc(static_cast<void *>(g_blocks), capacity * sizeof *g_blocks);
    if (grown == nullptr) return 0;
    g_blocks = static_cast<const void **>(grown);
    g_capacity = capacity;
    return 1;
}

// Takes the last entry into the place of entry i. g_lock is held.
void RemoveAt(size_t i)
{
    g_blocks[i] = g_blocks[g_count - 1];
    g_count--;
}

}  // namespace

int RecordArrayBlock(const void *data)
{
    std::lock_guard<std::mutex> hold(g_lock);
    if (IndexOf(data) < g_count) return 1;
    if (g_count == g_capacity && !Grow()) return 0;
    g_blocks[g_count++] = data;
    return 1;
}

void ForgetArrayBlock(const void *data)
{
    TakeArrayBlock(data);
}

int TakeArrayBlock(const void *data)
{
    std::lock_guard<std::mutex> hold(g_lock);
    size_t i = IndexOf(data);
    if (i == g_count) return 0;
    RemoveAt(i);
    return 1;
}
