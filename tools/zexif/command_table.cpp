#include "zexif/command.h"

namespace {

#define WRITE_OPTIONS                                                                        \
    "  -o OUT    write the result to OUT (with a single FILE) instead of over FILE, or\n"     \
    "            to standard output for -o -; the file is written through a temporary\n"    \
    "            file beside it, so a failed save leaves it as it was, and stays what it\n" \
    "            was: a link stays a link, hard links share the new content, the owner,\n"  \
    "            group and permissions stay\n"                                               \
    "  -P, --preserve-time\n"                                                               \
    "            give the saved file the modification time FILE had before the edit\n"

#define TAG_TEXT                                                                           \
    "\nTAG is a name such as Make, ExposureTime or GPSLatitude, in any case, or a number\n" \
    "in decimal or 0x hex. A name brings its own IFD; a number is looked for in IFD 0,\n"   \
    "or in the Exif IFD when it is an Exif tag's.\n"

#define IFD_OPTION                                                                         \
    "  --ifd N   the IFD of a TIFF tag: 0 for the image, 1 for the thumbnail; or exif,\n" \
    "            gps or interop, for a number of that IFD\n"

#define JSON_OPTION "  --json    one JSON array with an object per file, {\"file\", \"error\"} for a failed one\n"

#define OPTIONS "\noptions:\n"

const Command COMMANDS[] = {
    {"dump", "FILE... [--json]", "print the JPEG markers and every IFD with its tags",
     "Prints what the library sees in each file: the format, the chain of JPEG markers\n"
     "with the offset, size and signature of each payload, and every IFD with its tags\n"
     "(number, name, type, count and value), a sub-IFD below the tag that points to it.\n"
     OPTIONS JSON_OPTION,
     RunDump},
    {"info", "FILE... [--json]", "print the format, what metadata there is and the main tags",
     "Prints for each file its format, whether it has Exif data, a thumbnail and a\n"
     "voice annotation, and the main tags it has: camera, dates, orientation, exposure.\n"
     OPTIONS JSON_OPTION,
     RunInfo},
    {"get", "FILE... TAG [--ifd N] [--json]", "print one tag's value",
     "Prints the tag's value: text as it is, numbers in decimal, rationals as n/d and\n"
     "in decimal, GPS coordinates in degrees, orientation and a few other settings by\n"
     "name, UNDEFINED bytes in hex. With several files, each line starts with the\n"
     "file's name.\n" TAG_TEXT OPTIONS IFD_OPTION JSON_OPTION,
     RunGet},
    {"set", "FILE TAG TYPE VALUE... [--ifd N] [-o OUT] [-P]", "set a tag's value",
     "Sets the tag, adding it where the file has none, with its IFD (GPS, say) where that\n"
     "is missing too. TYPE is byte, ascii, short, long, rational, sbyte, undefined,\n"
     "sshort, slong, srational, float or double (or 1 to 12). An ascii VALUE is one\n"
     "argument; numbers are decimal, rationals n/d, undefined values one byte per\n"
     "argument in decimal or 0x hex.\n" TAG_TEXT OPTIONS IFD_OPTION WRITE_OPTIONS,
     RunSet},
    {"delete", "FILE... TAG [--ifd N] [-o OUT] [-P]", "delete a tag",
     "Deletes the tag from each file. A sub-IFD left empty goes with its pointer;\n"
     "delete GPSInfoIFDPointer to remove all GPS data.\n" TAG_TEXT OPTIONS IFD_OPTION WRITE_OPTIONS,
     RunDelete},
    {"thumbnail", "extract FILE OUT.jpg | set FILE IN.jpg [-o OUT] [-P]", "write out or replace the thumbnail",
     "extract writes the thumbnail of FILE to OUT.jpg; set makes the JPEG file IN.jpg\n"
     "the thumbnail of FILE.\n" OPTIONS WRITE_OPTIONS,
     RunThumbnail},
    {"audio", "extract FILE OUT.wav | set FILE IN.wav [-o OUT] [-P] | remove FILE [-o OUT] [-P]",
     "write out, attach or remove the voice annotation",
     "The voice annotation is a RIFF WAVE file kept in FPXR APP2 segments of a JPEG.\n"
     "extract writes it to OUT.wav, set attaches IN.wav, replacing what was there,\n"
     "remove takes it out.\n" OPTIONS WRITE_OPTIONS,
     RunAudio},
    {"strip", "FILE... [--keep-orientation] [-o OUT] [-P]", "remove the Exif data",
     "Removes the Exif data: every APP1 segment of a JPEG, the Exif and GPS IFDs of a\n"
     "TIFF, whose IFD 0 describes the image itself.\n" OPTIONS
     "  --keep-orientation\n"
     "            keep the Orientation tag, so that viewers still turn the image\n" WRITE_OPTIONS,
     RunStrip},
    {"remove-marker", "FILE CODE [--signature ABCD] [-o OUT] [-P]", "remove JPEG segments",
     "Removes every APP1 segment (CODE 0xE1), or the first segment of CODE whose\n"
     "payload starts with the four characters of the signature.\n" OPTIONS
     "  --signature ABCD\n"
     "            the first four payload bytes; needed for any CODE but 0xE1\n" WRITE_OPTIONS,
     RunRemoveMarker},
    {"copy-exif", "SRC DST [-o OUT] [-P]", "copy the Exif data of one file into another",
     "Copies the Exif data of SRC into DST, replacing DST's: the Exif APP1 segment\n"
     "between JPEG files, the tags of the Exif IFD between TIFF files.\n" OPTIONS WRITE_OPTIONS,
     RunCopyExif},
};

}  // namespace

const Command *CommandTable(size_t *count)
{
    *count = sizeof COMMANDS / sizeof COMMANDS[0];
    return COMMANDS;
}

const Command *FindCommand(const std::string &name)
{
    for (const Command &command : COMMANDS) {
        if (name == command.name) return &command;
    }
    return nullptr;
}
