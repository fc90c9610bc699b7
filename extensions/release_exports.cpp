#include <cstdlib>

#include "platform/handed_blocks.h"
#include "reader/tif_tag_list.h"
#include "zexif.h"

void zExifFreeTagList(TifTagList *list)
{
    FreeTifTagList(list);
}

// The record of handed-out blocks tells the array allocator's from malloc's.
void zExifFreeBuffer(ExifBuffer *buffer)
{
    if (buffer == nullptr || buffer->data == nullptr) return;
    if (TakeArrayBlock(buffer->data)) {
        delete[] buffer->data;
    } else {
        std::free(buffer->data);
    }
    buffer->data = nullptr;
    buffer->size = 0;
}
