#include "save/block_size.h"

#include "save/exif_writer.h"

int64_t ComputeIfdSize(const BlockSource &source, CNode *owner, int depth)
{
    CExifWriter measure(nullptr, source);
    int64_t cursor = 0;
    int64_t start = -1;
    int64_t link = -1;
    return measure.WriteIfd(owner, &cursor, depth, &start, &link) ? cursor : -1;
}

int64_t ComputeExifSize(const BlockSource &source, CNode *header, int keepMakerNote)
{
    if (header == nullptr) return 0;
    CExifWriter measure(nullptr, source, keepMakerNote);
    return measure.WriteTiff(header) ? measure.m_end : -1;
}
