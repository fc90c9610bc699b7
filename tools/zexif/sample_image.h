#ifndef ZEXIF_TOOL_SAMPLE_IMAGE_H
#define ZEXIF_TOOL_SAMPLE_IMAGE_H

#include <cstddef>

// The sample JPEG that make_sample draws at build time, compiled into the
// tool so that an installed zexif has it without the build folder.
extern const unsigned char SAMPLE_JPEG[];
extern const size_t SAMPLE_JPEG_SIZE;

#endif
