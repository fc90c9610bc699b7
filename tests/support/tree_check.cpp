#include "support/tree_check.h"

#include <cstring>

namespace {

constexpr int kShortcuts = 4;

bool IsTag(const CNode *node)
{
    return dynamic_cast<const CTag *>(node) != nullptr;
}

bool OwnsChain(const CNode *node)
{
    return node->m_child != nullptr && (node->m_id == NODE_IFD || IsTag(node));
}

void CheckChain(const CNode *owner, bool sorted, std::string &faults)
{
    const CNode *count = owner->m_child;
    if (count->m_id != NODE_ENTRY_COUNT || IsTag(count)) {
        faults += "chain of " + std::to_string(owner->m_id) + " without count; ";
        return;
    }
    uint32_t tags = 0;
    int32_t last = -1;
    for (const CNode *node = count->m_next; node != nullptr; node = node->m_next) {
        if (!IsTag(node)) continue;
        tags++;
        if (sorted && node->m_id < last) faults += "tag " + std::to_string(node->m_id) + " out of order; ";
        last = node->m_id;
    }
    if (tags != count->m_value) {
        faults += "count " + std::to_string(count->m_value) + " for " + std::to_string(tags) + " tags below " +
                  std::to_string(owner->m_id) + "; ";
    }
}

void Walk(const CNode *first, const CNode *parent, bool sorted, std::string &faults, const void *const *wanted,
          bool *found)
{
    for (const CNode *node = first; node != nullptr; node = node->m_next) {
        if (node->m_parent != parent) faults += "wrong parent of " + std::to_string(node->m_id) + "; ";
        for (int i = 0; i < kShortcuts; i++) {
            if (wanted[i] == node) found[i] = true;
        }
        if (OwnsChain(node)) CheckChain(node, sorted, faults);
        Walk(node->m_child, node, sorted, faults, wanted, found);
    }
}

void OutlineChain(const CNode *first, std::string &out)
{
    for (const CNode *node = first; node != nullptr; node = node->m_next) {
        if (node != first) out += ' ';
        out += std::to_string(node->m_id);
        bool structural = !IsTag(node) && (node->m_id == NODE_IFD || node->m_id == NODE_ENTRY_COUNT);
        if (structural) out += ":" + std::to_string(node->m_value);
        if (node->m_parent == nullptr && node->m_sig != nullptr) out += "'" + std::string(node->m_sig) + "'";
        if (node->m_child != nullptr) {
            out += '[';
            OutlineChain(node->m_child, out);
            out += ']';
        }
    }
}

void DumpChain(const CNode *first, std::string &out)
{
    for (const CNode *node = first; node != nullptr; node = node->m_next) {
        out += std::to_string(node->m_id);
        if (node->m_id == NODE_IFD || node->m_id == NODE_ENTRY_COUNT) out += ":" + std::to_string(node->m_value);
        const CTag *tag = dynamic_cast<const CTag *>(node);
        if (tag != nullptr) {
            out += "=" + std::to_string(tag->m_type) + "/" + std::to_string(tag->m_count) + "/" +
                   std::to_string(tag->m_value) + "/" + std::to_string(tag->m_size);
        }
        if (node->m_child != nullptr) {
            out += "[";
            DumpChain(node->m_child, out);
            out += "]";
        }
        out += " ";
    }
}

}  // namespace

std::string TreeFaults(const CExifDoc &doc, bool sorted)
{
    std::string faults;
    const void *wanted[kShortcuts] = {doc.m_exifMarker, doc.m_exifIfdTag, doc.m_thumbTag, doc.m_cur};
    bool found[kShortcuts] = {false, false, false, false};
    Walk(doc.m_root, nullptr, sorted, faults, wanted, found);
    const char *names[kShortcuts] = {"m_exifMarker", "m_exifIfdTag", "m_thumbTag", "m_cur"};
    for (int i = 0; i < kShortcuts; i++) {
        if (wanted[i] != nullptr && !found[i]) faults += std::string(names[i]) + " outside the tree; ";
    }
    return faults;
}

std::string ShortcutFaults(const CExifDoc &doc)
{
    std::string faults;
    if (doc.m_exifIfdTag != nullptr && doc.m_exifIfdTag->m_id != 34665) faults += "m_exifIfdTag on another tag; ";
    if (doc.m_thumbTag != nullptr && doc.m_thumbTag->m_id != 513) faults += "m_thumbTag on another tag; ";
    if (doc.m_thumbTag == nullptr && (doc.m_hasThumb || doc.m_thumbLoaded || (doc.m_thumbType & 0x800))) {
        faults += "thumbnail flags without its tag; ";
    }
    return faults;
}

std::string Outline(const CExifDoc &doc)
{
    std::string out;
    OutlineChain(doc.m_root, out);
    return out;
}

std::string TreeDump(const CExifDoc &doc)
{
    std::string out;
    DumpChain(doc.m_root, out);
    return out;
}
