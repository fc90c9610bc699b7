// Loads the file part of the input, applies the edits decoded from its head,
// saves, and loads the result again. A save that reports success must leave
// a file both families can open, and no save may leave anything beside it.
#include <string>

#include "fuzz/edit_ops.h"
#include "fuzz/fuzz_files.h"
#include "zexif.h"

namespace {

void CheckSavedFile(const std::string &path)
{
    CExifDoc *reloaded = zExifLoadFile(path.c_str());
    if (reloaded == nullptr) FuzzFinding("a saved file does not load");
    zExifDestroy(reloaded);
    CExifReader *reader = zRExifBeginRead(path.c_str());
    if (reader == nullptr) FuzzFinding("a saved file does not open for reading");
    zRExifEndRead(reader);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    EditInput input = SplitEditInput(data, size);
    std::string source = WriteFuzzFile("input", input.file, input.fileSize);
    CExifDoc *doc = zExifLoadFile(source.c_str());
    if (doc == nullptr) return 0;
    for (size_t i = 0; i < input.editCount; i++) ApplyEdit(doc, input.edits + i * EDIT_SIZE, source.c_str());
    std::string target = WriteFuzzFile("output.jpg", nullptr, 0);
    std::string before = ListFuzzDirectory();
    int saved = zExifSaveFile(doc, target.c_str());
    zExifDestroy(doc);
    if (ListFuzzDirectory() != before) FuzzFinding("a save left a file behind or took one away");
    if (saved == 0) CheckSavedFile(target);
    return 0;
}
