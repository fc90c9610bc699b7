#include "support/tag_steps.h"

#include <cstdlib>

#include "edit/tag_lookup.h"
#include "load/tiff_types.h"
#include "support/tree_check.h"

namespace {

std::string Describe(size_t index, const TagStep &step)
{
    const char *names[] = {"set", "del", "get"};
    return "step " + std::to_string(index) + " (" + names[step.kind] + " " + std::to_string(step.entry.tag) + " in " +
           std::to_string(step.ifd) + "): ";
}

int Run(CExifDoc &doc, const TagStep &step)
{
    if (step.kind == TagStep::DEL) return zExifDelTag(&doc, uint32_t(step.entry.tag), step.ifd);
    ExifTagValue value = ValueOf(step.entry);
    return zExifSetTag(&doc, uint32_t(step.entry.tag), &value, step.ifd);
}

std::string CheckGet(CExifDoc &doc, const TagStep &step)
{
    GotTag got = GetTag(&doc, uint32_t(step.entry.tag), step.ifd);
    if (got.result != step.result) return "gives " + std::to_string(got.result) + "; ";
    if (got.result != 0) return "";
    if (got.type != step.entry.type || got.count != step.entry.count) {
        return "type " + std::to_string(got.type) + " count " + std::to_string(got.count) + "; ";
    }
    return got.bytes == step.entry.bytes ? "" : "other bytes; ";
}

}  // namespace

GotTag GetTag(CExifDoc *doc, uint32_t tag, int ifd)
{
    GotTag got;
    ExifTagValue value{0, 0, nullptr};
    got.result = zExifGetTag(doc, tag, &value, ifd);
    if (got.result != 0) return got;
    got.type = value.type;
    got.count = value.count;
    if (value.data != nullptr) {
        const uint8_t *data = static_cast<const uint8_t *>(value.data);
        got.bytes.assign(data, data + ValueDataSize(value));
        std::free(value.data);
    }
    return got;
}

TagStep Set(const EntryDef &entry, int ifd, int result)
{
    return {TagStep::SET, entry, ifd, result};
}

TagStep Del(int32_t tag, int ifd, int result)
{
    return {TagStep::DEL, EntryDef{tag, 0, 0, {}, {}}, ifd, result};
}

TagStep Get(const EntryDef &expected, int ifd)
{
    EntryDef entry = expected;
    if (TiffTypeSize(entry.type) == 0) entry.bytes.clear();
    return {TagStep::GET, entry, ifd, 0};
}

TagStep Missing(int32_t tag, int ifd)
{
    return {TagStep::GET, EntryDef{tag, 0, 0, {}, {}}, ifd, -1};
}

std::string RunSteps(CExifDoc &doc, const std::vector<TagStep> &steps)
{
    std::string faults;
    for (size_t i = 0; i < steps.size(); i++) {
        const TagStep &step = steps[i];
        std::string fault;
        if (step.kind == TagStep::GET) {
            fault = CheckGet(doc, step);
        } else {
            std::string before = TreeDump(doc);
            int result = Run(doc, step);
            if (result != step.result) fault = "gives " + std::to_string(result) + "; ";
            if (result != 0 && before != TreeDump(doc)) fault += "failed and changed the tree; ";
        }
        if (!fault.empty()) faults += Describe(i, step) + fault;
    }
    return faults;
}
