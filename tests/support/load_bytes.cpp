#include "support/load_bytes.h"

#include "support/temp_dir.h"
#include "tree/walk.h"

DocPtr LoadBytes(const std::vector<uint8_t> &bytes)
{
    TempDir dir;
    std::string path = dir.Write("file.bin", bytes);
    return DocPtr(zExifLoadFile(path.c_str()));
}

std::string DescribeLoad(const std::vector<uint8_t> &bytes, std::string (*describe)(const CExifDoc &))
{
    DocPtr doc = LoadBytes(bytes);
    return doc ? describe(*doc) : "";
}

std::vector<CTag *> TagsOf(CNode *parent)
{
    std::vector<CTag *> tags;
    for (CNode *node = parent->m_child; node != nullptr; node = node->m_next) {
        if (CTag *tag = AsTag(node)) tags.push_back(tag);
    }
    return tags;
}
