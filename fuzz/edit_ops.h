#ifndef ZEXIF_FUZZ_EDIT_OPS_H
#define ZEXIF_FUZZ_EDIT_OPS_H

#include <cstddef>
#include <cstdint>

#include "zexif.h"

// The edit harness's input: a count byte, that many edits of EDIT_SIZE bytes
// each, then the file. Each edit is an operation byte and its arguments.
constexpr size_t EDIT_SIZE = 8;
constexpr size_t MAX_EDITS = 16;

struct EditInput {
    const uint8_t *edits;
    size_t editCount;
    const uint8_t *file;
    size_t fileSize;
};

EditInput SplitEditInput(const uint8_t *data, size_t size);

// Applies one edit; source is the input file's path, for the edits that take
// blocks out of it through the read-only family.
void ApplyEdit(CExifDoc *doc, const uint8_t *edit, const char *source);

#endif
