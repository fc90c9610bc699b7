/* A C program with nothing but the public header and the shared library does
 * what the zexif tool does: opens and saves every real file through a path
 * and through memory alike, adds GPS and IFD 0's orientation, writes a
 * comment and an XMP packet, lists IFD 0, and learns why calls fail.
 * The real files are those of the folder ZEXIF_SAMPLES names, else of the one
 * the build was given; it may be missing. */
#define _XOPEN_SOURCE 700
#include <ftw.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "zexif.h"

static int g_failures;
static char g_scratch[] = "/tmp/zexif-check-XXXXXX";

#define CHECK(condition, what)                                                   \
    do {                                                                         \
        if (!(condition)) {                                                      \
            fprintf(stderr, "%s:%d: %s: %s\n", __FILE__, __LINE__, what, #condition); \
            g_failures++;                                                        \
        }                                                                        \
    } while (0)

#define EXPECT_ERROR(failed, code) CHECK((failed) && zExifGetLastError() == (code), zExifGetErrorText(code))

static const char *Scratch(const char *name)
{
    static char path[4096];
    snprintf(path, sizeof path, "%s/%s", g_scratch, name);
    return path;
}

static unsigned char *ReadAll(const char *path, uint32_t *size)
{
    FILE *file = fopen(path, "rb");
    unsigned char *bytes = NULL;
    long length = file != NULL && fseek(file, 0, SEEK_END) == 0 ? ftell(file) : -1;
    if (length > 0 && fseek(file, 0, SEEK_SET) == 0 && (bytes = malloc((size_t)length)) != NULL) {
        *size = (uint32_t)fread(bytes, 1, (size_t)length, file);
    }
    if (file != NULL) fclose(file);
    return bytes;
}

static int SameValue(uint32_t type, uint32_t count, const void *a, const void *b)
{
    static const size_t SIZES[13] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8};
    size_t size = type <= 12 ? SIZES[type] * count : 0;
    return size == 0 || (a != NULL && b != NULL && memcmp(a, b, size) == 0);
}

/* Memory and file give the same saved bytes. */
static void CompareMemory(const char *path, CExifDoc *doc)
{
    uint32_t size = 0, savedSize = 0;
    unsigned char *bytes = ReadAll(path, &size);
    CExifDoc *copy = zExifLoadMemory(bytes, size);
    CExifReader *reader = zRExifBeginReadMemory(bytes, size);
    ExifBuffer saved = {NULL, 0}, marker = {NULL, 0};
    unsigned char *written;
    CHECK(copy != NULL && reader != NULL, path);
    CHECK(zExifSaveMemory(copy, &saved) == 0 && zExifSaveFile(doc, Scratch("saved")) == 0, path);
    written = ReadAll(Scratch("saved"), &savedSize);
    CHECK(written != NULL && saved.size == savedSize && memcmp(saved.data, written, savedSize) == 0, path);
    if (zRExifGetExifMarker(reader, &marker) == 0) CHECK(memcmp(marker.data, "Exif", 4) == 0, path);
    zExifFreeBuffer(&marker);
    zExifFreeBuffer(&saved);
    free(written);
    zRExifEndRead(reader);
    zExifDestroy(copy);
    free(bytes);
}

static int CheckSample(const char *path, const struct stat *info, int kind, struct FTW *where)
{
    CExifDoc *doc;
    (void)info;
    (void)where;
    if (kind != FTW_F || (strstr(path, ".jpg") == NULL && strstr(path, ".tif") == NULL)) return 0;
    doc = zExifLoadFile(path);
    CHECK(doc != NULL, path);
    if (doc != NULL) CompareMemory(path, doc);
    zExifDestroy(doc);
    return 0;
}

/* The index of the first segment of that marker, and of those bytes where
 * text isn't NULL; -1 when there is none. */
static int32_t FindSegment(CExifDoc *doc, int32_t marker, const char *text, uint32_t size)
{
    ExifSegment *list = NULL;
    int32_t count = 0, i, found = -1;
    if (zExifGetSegmentList(doc, &list, &count) != 0) return -1;
    for (i = 0; i < count && found < 0; i++) {
        ExifBuffer data = {NULL, 0};
        if (list[i].marker != marker) continue;
        if (text == NULL || (zExifGetSegmentData(doc, i, &data) == 0 && data.size == size && memcmp(data.data, text, size) == 0)) {
            found = i;
        }
        zExifFreeBuffer(&data);
    }
    free(list);
    return found;
}

/* GPS, IFD 0's orientation and an Interop IFD go into a file without them,
 * with a comment and an XMP packet in front of the image's tables; nothing
 * else is added. */
static void EditPhoto(const char *photo)
{
    static const char XMP[] = "http://ns.adobe.com/xap/1.0/\0<x:xmpmeta/>";
    uint32_t latitude[6] = {52, 1, 30, 1, 1234, 100}, size = 0;
    uint16_t orientation = 6;
    ExifTagValue gps = {5, 3, latitude}, turn = {3, 1, &orientation}, index = {2, 4, "R98"}, value;
    ExifBuffer comment = {(unsigned char *)"zexif was here", 14}, xmp = {(unsigned char *)XMP, sizeof XMP};
    TifTagList *ifd0 = NULL, *list = NULL;
    unsigned char *bytes = ReadAll(photo, &size);
    CExifDoc *doc = zExifLoadMemory(bytes, size), *saved;
    CExifReader *reader;
    CHECK(doc != NULL && zExifGetTagList(doc, 0, &ifd0) == 0, photo);
    CHECK(zExifGetTagAt(doc, IFD_GPS, 2, &value) == -1 && zExifGetTagAt(doc, 0, 274, &value) == -1, "a file without them");
    CHECK(zExifSetTagAt(doc, IFD_GPS, 2, &gps) == 0 && zExifSetTagAt(doc, 0, 274, &turn) == 0, "set");
    CHECK(zExifSetTagAt(doc, IFD_INTEROP, 1, &index) == 0, "set");
    CHECK(zExifInsertSegment(doc, 0xFE, &comment) == 0 && zExifInsertSegment(doc, 0xE1, &xmp) == 0, "insert");
    CHECK(zExifSaveFile(doc, Scratch("edited.jpg")) == 0, "save");
    reader = zRExifBeginRead(Scratch("edited.jpg"));
    CHECK(zRExifGetTagAt(reader, IFD_GPS, 2, &value) == 0 && SameValue(5, 3, latitude, value.data), "GPS");
    CHECK(zRExifGetTagAt(reader, 0, 274, &value) == 0 && *(uint16_t *)value.data == 6, "orientation in IFD 0");
    CHECK(zRExifGetTagAt(reader, IFD_INTEROP, 1, &value) == 0 && strcmp(value.data, "R98") == 0, "Interop");
    CHECK(zRExifGetTagList(reader, IFD_GPS, &list) == 0 && list->count == 1, "the GPS IFD holds what was set");
    zExifFreeTagList(list);
    CHECK(zRExifGetTagList(reader, 0, &list) == 0 && list->count == ifd0->count + 2, "IFD 0 gains 274 and 34853 only");
    zExifFreeTagList(list);
    zExifFreeTagList(ifd0);
    saved = zExifLoadFile(Scratch("edited.jpg"));
    CHECK(FindSegment(saved, 0xE1, XMP, sizeof XMP) > 0, "the XMP packet comes back");
    CHECK(FindSegment(saved, 0xFE, "zexif was here", 14) > 0, "the comment comes back");
    CHECK(FindSegment(saved, 0xFE, NULL, 0) + 2 == FindSegment(saved, 0xDB, NULL, 0), "behind the APPn, before DQT");
    zExifDestroy(saved);
    zRExifEndRead(reader);
    zExifDestroy(doc);
    free(bytes);
}

/* A JPEG of no metadata gets its APP1, IFD 0 and GPS IFD through memory; a
 * TIFF gets no IFD that it would hold no image for. */
static void EditBareFiles(void)
{
    static const unsigned char JPEG[] = {0xFF, 0xD8, 0xFF, 0xDB, 0, 3, 0, 0xFF, 0xD9};
    static const unsigned char TIFF[] = {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 1, 3, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0};
    uint32_t altitude[2] = {1234, 10};
    ExifTagValue value = {5, 1, altitude};
    ExifTagKey key = {0, 271};
    ExifBuffer saved = {NULL, 0};
    CExifDoc *jpeg = zExifLoadMemory(JPEG, sizeof JPEG), *tiff = zExifLoadMemory(TIFF, sizeof TIFF);
    CExifReader *bare = zRExifBeginReadMemory(JPEG, sizeof JPEG), *edited;
    EXPECT_ERROR(zRExifGetTagAt(bare, 0, 271, &value) == -1, ZEXIF_ERROR_NOT_FOUND);
    EXPECT_ERROR(zRExifGetTagsAt(NULL, &key, 1, &value) == -1 && zRExifGetTagsAt(bare, NULL, 1, &value) == -1, ZEXIF_ERROR_ARGUMENT);
    EXPECT_ERROR(zRExifGetTagsAt(bare, &key, 1, NULL) == -1 && zRExifGetTagsAt(bare, &key, -1, &value) == -1, ZEXIF_ERROR_ARGUMENT);
    CHECK(zExifSetTagAt(jpeg, IFD_GPS, 6, &value) == 0 && zExifSaveMemory(jpeg, &saved) == 0, "GPS into a bare JPEG");
    edited = zRExifBeginReadMemory(saved.data, saved.size);
    CHECK(zRExifGetTagAt(edited, IFD_GPS, 6, &value) == 0 && SameValue(5, 1, altitude, value.data), "GPS read back");
    EXPECT_ERROR(zExifSetTagAt(tiff, 1, 305, &value) == -1, ZEXIF_ERROR_FORMAT);
    zRExifEndRead(edited);
    zRExifEndRead(bare);
    zExifFreeBuffer(&saved);
    zExifDestroy(tiff);
    zExifDestroy(jpeg);
}

/* AddressSanitizer holds more address space than any limit would leave. */
#if defined(__SANITIZE_ADDRESS__)
#define UNDER_SANITIZER 1
#else
#define UNDER_SANITIZER 0
#endif

/* A load of a large copy under a limit of address space, in a child. */
static int MemoryFailureCode(void)
{
    int status = 0;
    pid_t child = fork();
    if (child == 0) {
        struct rlimit limit;
        size_t size = 256u << 20;
        unsigned char *bytes = malloc(size);
        FILE *statm = fopen("/proc/self/statm", "r");
        unsigned long pages = 0;
        if (bytes == NULL || statm == NULL || fscanf(statm, "%lu", &pages) != 1) _exit(99);
        fclose(statm);
        bytes[0] = 0xFF;
        bytes[1] = 0xD8;
        limit.rlim_cur = limit.rlim_max = pages * (unsigned long)sysconf(_SC_PAGESIZE) + (32u << 20);
        if (setrlimit(RLIMIT_AS, &limit) != 0 || zExifLoadMemory(bytes, (uint32_t)size) != NULL) _exit(98);
        _exit(zExifGetLastError());
    }
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

static void CheckErrors(const char *photo)
{
    static const unsigned char BROKEN[] = {0xFF, 0xD8, 0xFF, 0xE1, 0, 18, 'E', 'x', 'i', 'f', 0, 0,
                                           'I', 'I', 42, 0, 8, 0, 0, 0, 0, 0, 0xFF, 0xD9};
    struct rlimit full, before;
    static unsigned char big[65534];
    ExifTagValue value = {2, 1, big};
    int code;
    ExifBuffer empty = {NULL, 0}, largest = {big, sizeof big - 1}, tooLarge = {big, sizeof big};
    ExifSegment *segments = NULL;
    CExifDoc *doc = zExifLoadFile(photo);
    EXPECT_ERROR(zExifGetTagAt(doc, -1, 271, &value) == -1, ZEXIF_ERROR_ARGUMENT);
    EXPECT_ERROR(zExifSetTagAt(doc, IFD_INTEROP + 1, 271, &value) == -1, ZEXIF_ERROR_ARGUMENT);
    EXPECT_ERROR(zExifGetSegmentList(doc, &segments, NULL) == -1 && zExifSaveMemory(doc, NULL) == -1, ZEXIF_ERROR_ARGUMENT);
    CHECK(zExifSetTagAt(doc, 2, 305, &value) == 0, "a new IFD behind the last");
    EXPECT_ERROR(zExifSetTagAt(doc, 4, 305, &value) == -1, ZEXIF_ERROR_NOT_FOUND);
    CHECK(zExifGetSegmentData(doc, 0, &empty) == 0 && empty.size == 0, "SOI has no payload");
    CHECK(zExifInsertSegment(doc, 0xFE, &empty) == 0 && zExifInsertSegment(doc, 0xFE, &largest) == 0, "segment sizes");
    EXPECT_ERROR(zExifInsertSegment(doc, 0xFE, &tooLarge) == -1, ZEXIF_ERROR_LIMIT);
    EXPECT_ERROR(zExifLoadFile("/nonexistent/zexif.jpg") == NULL, ZEXIF_ERROR_OPEN);
    EXPECT_ERROR(zExifLoadMemory("plain text", 10) == NULL, ZEXIF_ERROR_FORMAT);
    EXPECT_ERROR(zExifLoadMemory(BROKEN, sizeof BROKEN) == NULL, ZEXIF_ERROR_DAMAGED);
    EXPECT_ERROR(zExifGetTagAt(doc, 0, 9999, &value) == -1, ZEXIF_ERROR_NOT_FOUND);
    EXPECT_ERROR(zRExifBeginReadMemory(BROKEN, 0x80000000u) == NULL, ZEXIF_ERROR_LIMIT);
    EXPECT_ERROR(zExifSaveFile(doc, "/sys/zexif-check.jpg") == -1, ZEXIF_ERROR_ACCESS);
    getrlimit(RLIMIT_FSIZE, &before);
    full = before;
    full.rlim_cur = 64;
    signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &full);
    EXPECT_ERROR(zExifSaveFile(doc, Scratch("full.jpg")) == -1, ZEXIF_ERROR_WRITE);
    setrlimit(RLIMIT_FSIZE, &before);
    CHECK(zExifSaveFile(doc, Scratch("first.jpg")) == 0, "a save");
    EXPECT_ERROR(zExifSaveFile(doc, Scratch("second.jpg")) == -1, ZEXIF_ERROR_READ);
    zExifDestroy(doc);
    CHECK(UNDER_SANITIZER || MemoryFailureCode() == ZEXIF_ERROR_MEMORY, "a load without memory");
    for (code = ZEXIF_ERROR_NONE; code <= ZEXIF_ERROR_READ; code++) {
        CHECK(strcmp(zExifGetErrorText(code), zExifGetErrorText(-1)) != 0, "each code has its text");
    }
}

static void CheckNames(void)
{
    char version[32];
    int ifd = 0;
    uint32_t tag = 0, type = 0;
    snprintf(version, sizeof version, "%d.%d.%d", ZEXIF_VERSION_MAJOR, ZEXIF_VERSION_MINOR, ZEXIF_VERSION_PATCH);
    CHECK(strcmp(zExifGetVersion(), version) == 0, "version");
    CHECK(zExifFindTag("gpsLATITUDE", &ifd, &tag, &type) == 0 && ifd == IFD_GPS && tag == 2 && type == 5, "by name");
    CHECK(strcmp(zExifGetTagName(IFD_INTEROP, 1), "InteroperabilityIndex") == 0, "Interop tag 1");
    CHECK(strcmp(zExifGetTagName(3, 274), "Orientation") == 0 && zExifGetTagName(IFD_EXIF, 274) == NULL, "a chain tag");
}

static int RemoveScratch(const char *path, const struct stat *info, int kind, struct FTW *where)
{
    (void)info;
    (void)kind;
    (void)where;
    return remove(path);
}

int main(void)
{
    const char *samples = getenv("ZEXIF_SAMPLES") != NULL ? getenv("ZEXIF_SAMPLES") : ZEXIF_SAMPLES_DIR;
    if (mkdtemp(g_scratch) == NULL) return 2;
    if (nftw(samples, CheckSample, 16, FTW_PHYS) != 0) printf("no real camera files at %s\n", samples);
    EditPhoto(ZEXIF_SAMPLE_JPEG);
    EditBareFiles();
    CheckErrors(ZEXIF_SAMPLE_JPEG);
    CheckNames();
    nftw(g_scratch, RemoveScratch, 16, FTW_DEPTH | FTW_PHYS);
    return g_failures == 0 ? 0 : 1;
}
