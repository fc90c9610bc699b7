#include "zexif/command.h"

namespace {

const CommandOption HELP = {"help", 'h', false};
const CommandOption RECURSIVE = {"recursive", 'r', false};
const CommandOption JOBS = {"jobs", 'j', true};
const CommandOption JSON = {"json", 0, false};
const CommandOption CSV = {"csv", 0, false};
const CommandOption TAG = {"tag", 't', true};
const CommandOption IFD = {"ifd", 0, true};
const CommandOption OUT = {"out", 'o', true};
const CommandOption DRY_RUN = {"dry-run", 'n', false};
const CommandOption PRESERVE_TIME = {"preserve-time", 'P', false};

// The options of a command that reads files, of one that writes them, and
// its own.
std::vector<CommandOption> Reading(std::vector<CommandOption> own)
{
    own.insert(own.end(), {HELP, RECURSIVE, JOBS});
    return own;
}

std::vector<CommandOption> Writing(std::vector<CommandOption> own)
{
    own.insert(own.end(), {OUT, DRY_RUN, PRESERVE_TIME});
    return Reading(own);
}

#define FILE_OPTIONS                                                                            \
    "  -r, --recursive\n"                                                                       \
    "            take the JPEG and TIFF files in the folders among FILE and below them,\n"      \
    "            known by their first bytes, whatever their names\n"                            \
    "  -j, --jobs=N\n"                                                                          \
    "            work on N files at a time (default: one per core); the output comes in\n"     \
    "            the order of the files all the same\n"

#define WRITE_OPTIONS                                                                        \
    "  -o, --out=OUT\n"                                                                      \
    "            write the result to OUT (with a single FILE) instead of over FILE, or\n"     \
    "            to standard output for -o -; the file is written through a temporary\n"    \
    "            file beside it, so a failed save leaves it as it was, and stays what it\n" \
    "            was: a link stays a link, hard links share the new content, the owner,\n"  \
    "            group and permissions stay\n"                                               \
    "  -n, --dry-run\n"                                                                     \
    "            print for each file every value that would change, old and new, and\n"    \
    "            write nothing\n"                                                            \
    "  -P, --preserve-time\n"                                                               \
    "            give the saved file the modification time FILE had before the edit\n"      \
    FILE_OPTIONS

#define TAG_TEXT                                                                           \
    "\nTAG is a name such as Make, ExposureTime or GPSLatitude, in any case, or a number\n" \
    "in decimal or 0x hex. A name brings its own IFD; a number is looked for in IFD 0,\n"   \
    "or in the Exif IFD when it is an Exif tag's.\n"

#define IFD_OPTION                                                                         \
    "  --ifd=N   the IFD of a TIFF tag: 0 for the image, 1 for the thumbnail; or exif,\n" \
    "            gps or interop, for a number of that IFD\n"

#define REPORT_OPTIONS                                                                        \
    "  --json    one JSON array with an object per file, {\"file\", \"error\"} for a failed one\n" \
    "  --csv     a header row, then one row per file\n"

#define OPTIONS "\nOptions:\n"
#define EXIT_TEXT "\nExit status: 0 when every file was handled, 1 when some file was not, 2 for wrong\narguments.\n"

const Command COMMANDS[] = {
    {"dump", "[--json] FILE...", "print the JPEG markers and every IFD with its tags",
     "Prints what the library sees in each file: the format, the chain of JPEG markers\n"
     "with the offset, size and signature of each payload, and every IFD with its tags\n"
     "(number, name, type, count and value), a sub-IFD below the tag that points to it.\n"
     OPTIONS "  --json    one JSON array with an object per file, {\"file\", \"error\"} for a failed one\n"
     FILE_OPTIONS EXIT_TEXT,
     Reading({JSON}), RunDump},
    {"info", "[--json|--csv] FILE...", "show a photo's camera, date, exposure, size and place at a glance",
     "Prints for each file its format, whether it has Exif data, a thumbnail and a\n"
     "voice annotation, and what the file says of: the camera, the lens, the date it\n"
     "was taken (DateTimeOriginal, else DateTime), the exposure time, f-number, ISO,\n"
     "focal length (with its 35 mm equivalent), the image size, the orientation, the\n"
     "GPS position in signed decimal degrees, the artist and the copyright.\n"
     OPTIONS REPORT_OPTIONS FILE_OPTIONS EXIT_TEXT,
     Reading({JSON, CSV}), RunInfo},
    {"get", "-t TAG [-t TAG]... [--json|--csv] FILE... | FILE... TAG", "print tags' values",
     "Prints the tags' values: text as it is, numbers in decimal, rationals as n/d and\n"
     "in decimal, GPS coordinates in degrees, orientation and a few other settings by\n"
     "name, UNDEFINED bytes in hex. With several files each line starts with the file's\n"
     "name, with several tags with the tag's. GPSPosition stands for the latitude and\n"
     "longitude together, in signed decimal degrees. A file without a tag asked for\n"
     "is told on standard error and counts as failed.\n" TAG_TEXT OPTIONS
     "  -t, --tag=TAG\n"
     "            a tag to print, as often as needed\n" IFD_OPTION REPORT_OPTIONS FILE_OPTIONS EXIT_TEXT,
     Reading({TAG, IFD, JSON, CSV}), RunGet},
    {"set", "-t TAG[:TYPE]=VALUE [-t ...]... FILE... | FILE TAG TYPE VALUE...", "set tags' values",
     "Sets the tags, adding those a file has none of, with their IFD (GPS, say) where\n"
     "that is missing too; all of a file's tags in one save. A tag's type comes from\n"
     "the table of tags the library knows; TAG:TYPE=VALUE gives another, and an unknown\n"
     "tag needs one. TYPE is byte, ascii, short, long, rational, sbyte, undefined,\n"
     "sshort, slong, srational, float or double (or 1 to 12). Text is taken as it is;\n"
     "numbers are separated by spaces, rationals given as n/d or as decimals. A value\n"
     "that doesn't fit the tag is refused and no file is touched: a date must be\n"
     "\"YYYY:MM:DD HH:MM:SS\", a number a number, and a tag that always has a number\n"
     "of values (GPSLatitude 3, Orientation 1) must get that many.\n"
     "In the first form, VALUE... are the values, one argument each, UNDEFINED values\n"
     "one byte each in decimal or 0x hex.\n" TAG_TEXT OPTIONS
     "  -t, --tag=TAG[:TYPE]=VALUE\n"
     "            a tag to set, as often as needed\n" IFD_OPTION WRITE_OPTIONS EXIT_TEXT,
     Writing({TAG, IFD}), RunSet},
    {"delete", "-t TAG [-t TAG]... FILE... | FILE... TAG", "delete tags",
     "Deletes the tags from each file. A sub-IFD left empty goes with its pointer;\n"
     "delete GPSInfoIFDPointer to remove all GPS data. A tag that a file doesn't have\n"
     "is noted on standard error and is no failure.\n" TAG_TEXT OPTIONS
     "  -t, --tag=TAG\n"
     "            a tag to delete, as often as needed\n" IFD_OPTION WRITE_OPTIONS EXIT_TEXT,
     Writing({TAG, IFD}), RunDelete},
    {"gps", "set --lat=DEG --lon=DEG [--alt=M] FILE... | remove FILE...", "set or remove the GPS position",
     "set writes the position in signed decimal degrees (south and west negative) and,\n"
     "with --alt, the altitude in metres (below sea level negative): GPSVersionID\n"
     "2.3.0.0, the Ref tags and the coordinates as degrees, minutes and seconds,\n"
     "making the GPS IFD where there is none. remove deletes the GPS IFD.\n" OPTIONS
     "  --lat=DEG, --lon=DEG, --alt=M\n"
     "            the position\n" WRITE_OPTIONS EXIT_TEXT,
     Writing({{"lat", 0, true}, {"lon", 0, true}, {"alt", 0, true}}), RunGps},
    {"shift-dates", "--by=[+|-][D ]HH:MM[:SS] FILE...", "move the dates of photos by a time",
     "Moves DateTime, DateTimeOriginal and DateTimeDigitized together by the time\n"
     "given, forward or, with -, back, across days, months and years. A file with a\n"
     "date that isn't \"YYYY:MM:DD HH:MM:SS\" is left as it is and told.\n" OPTIONS
     "  --by=[+|-][D ]HH:MM[:SS]\n"
     "            the time: days, hours, minutes and seconds, e.g. --by=-1:00 or\n"
     "            --by='+1 02:30'\n" WRITE_OPTIONS EXIT_TEXT,
     Writing({{"by", 0, true}}), RunShiftDates},
    {"rename", "--format=FORMAT FILE...", "rename photos by the date they were taken",
     "Renames each file in its folder by its DateTimeOriginal (else DateTime) through\n"
     "FORMAT, in which %Y, %m, %d, %H, %M, %S and the other strftime conversions\n"
     "stand for the parts of the date; the extension stays. An existing name is never\n"
     "replaced: -1, -2... go behind a name that is taken. A file without a date is\n"
     "left and noted. The files are renamed one after the other, in the order given.\n"
     OPTIONS "  --format=FORMAT\n"
     "            the new name, e.g. '%Y-%m-%d_%H%M%S'\n"
     "  -n, --dry-run\n"
     "            print each old and new name, and rename nothing\n" FILE_OPTIONS EXIT_TEXT,
     Reading({{"format", 0, true}, DRY_RUN}), RunRename},
    {"strip", "[--all] [--keep-orientation] FILE...", "remove the Exif data, or all metadata",
     "Removes the Exif data: every APP1 segment of a JPEG, the Exif and GPS IFDs of a\n"
     "TIFF, whose IFD 0 describes the image itself.\n" OPTIONS
     "  --all     remove all metadata: Exif, XMP, IPTC and Photoshop (APP13), comments,\n"
     "            the voice annotation; the ICC profile stays\n"
     "  --keep-orientation\n"
     "            keep the Orientation tag, so that viewers still turn the image\n" WRITE_OPTIONS EXIT_TEXT,
     Writing({{"all", 0, false}, {"keep-orientation", 0, false}}), RunStrip},
    {"thumbnail", "extract [-o DIR] FILE... | extract FILE OUT.jpg | set FILE IN.jpg | remove FILE...",
     "write out, replace or remove the thumbnail",
     "extract writes the thumbnail of each FILE to DIR (the current folder by default)\n"
     "as NAME-thumb.jpg, NAME being the file's name without its extension; the first\n"
     "form's two files write FILE's thumbnail to OUT.jpg. set makes the JPEG file\n"
     "IN.jpg the thumbnail of FILE. remove deletes the thumbnail, its offset and length\n"
     "tags together.\n" OPTIONS
     "  -o, --out=DIR\n"
     "            of extract: the folder for the thumbnails\n" WRITE_OPTIONS EXIT_TEXT,
     Writing({}), RunThumbnail},
    {"comment", "get FILE... | set TEXT FILE... | remove FILE...", "show, set or remove the JPEG comment",
     "get prints the text of each JPEG comment (COM) segment; set replaces the comment\n"
     "with TEXT, or adds one; remove deletes every comment segment.\n" OPTIONS WRITE_OPTIONS EXIT_TEXT,
     Writing({}), RunComment},
    {"xmp", "get [-o OUT] FILE... | set PACKET FILE...", "write out or replace the XMP packet",
     "get writes the XMP packet of each file, as it is, to standard output or to OUT;\n"
     "set makes the contents of the file PACKET the XMP packet. In a JPEG the packet\n"
     "is the APP1 segment of \"http://ns.adobe.com/xap/1.0/\", which holds at most\n"
     "65,504 bytes; in a TIFF it is tag 700 of IFD 0. The packet is not parsed.\n" OPTIONS
     WRITE_OPTIONS EXIT_TEXT,
     Writing({}), RunXmp},
    {"audio", "extract FILE OUT.wav | set FILE IN.wav | remove FILE...",
     "write out, attach or remove the voice annotation",
     "The voice annotation is a RIFF WAVE file kept in FPXR APP2 segments of a JPEG.\n"
     "extract writes it to OUT.wav, set attaches IN.wav, replacing what was there,\n"
     "remove takes it out.\n" OPTIONS WRITE_OPTIONS EXIT_TEXT,
     Writing({}), RunAudio},
    {"remove-marker", "[--signature=ABCD] FILE... CODE", "remove JPEG segments",
     "Removes every APP1 segment (CODE 0xE1), or the first segment of CODE whose\n"
     "payload starts with the four characters of the signature.\n" OPTIONS
     "  --signature=ABCD\n"
     "            the first four payload bytes; needed for any CODE but 0xE1\n" WRITE_OPTIONS EXIT_TEXT,
     Writing({{"signature", 0, true}}), RunRemoveMarker},
    {"copy-exif", "SRC DST...", "copy the Exif data of one file into others",
     "Copies the Exif data of SRC into each DST, replacing DST's. Between JPEG files\n"
     "that is the Exif APP1 segment, between TIFF files the Exif IFD. Between a JPEG\n"
     "and a TIFF, either way, the tags of the Exif, GPS and Interoperability IFDs and\n"
     "the descriptive tags of IFD 0 (Make, Model, DateTime, Orientation, Artist...),\n"
     "never those that describe the image data (sizes, compression, strips, tiles).\n"
     OPTIONS WRITE_OPTIONS EXIT_TEXT,
     Writing({}), RunCopyExif},
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
