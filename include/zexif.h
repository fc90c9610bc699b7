/*
 * zExifLib: read and edit the Exif, GPS, thumbnail and voice-annotation
 * metadata of JPEG and TIFF files.
 *
 * Two families of functions:
 *   zExif...   read-write. A document holds the whole file as a tree; edits
 *              change the tree, zExifSaveFile writes a new file through a
 *              temporary file beside the target.
 *   zRExif...  read-only. A reader keeps the file open and answers single
 *              questions cheaply, without building a tree.
 *
 * Results: 0 for success and -1 for failure, or a handle or NULL, unless a
 * function says otherwise. A null handle gets the failure result (0 from
 * the zExifIs... and zRExifIs... questions and the format getters). Numbers
 * in values are in host byte order; 1-byte values keep the order of the file.
 *
 * Paths: a path is a NUL-terminated narrow (UTF-8) string. Where the file
 * can't be opened under that reading and the string can't be a narrow path
 * (it is one byte long, or not valid UTF-8), the same pointer is read as a
 * NUL-terminated string of 16-bit (UTF-16) characters. zExifSaveFile takes
 * narrow paths only.
 *
 * Beside the two families, a set of extensions: the version, why a call
 * failed, the tags of exactly one IFD, JPEG segments, files in memory, tag
 * names, and functions that release what the library hands out.
 *
 * Threads: different handles may be used from different threads at once;
 * one handle must not be used by two threads at the same time. Every call
 * that fails records why in a code of the calling thread (zExifGetLastError).
 * zExifFreeBuffer may be called from any thread.
 */
#ifndef ZEXIF_H
#define ZEXIF_H

#include <stdint.h>

#if defined(ZEXIF_BUILDING)
#define ZEXIF_API __attribute__((visibility("default")))
#else
#define ZEXIF_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

#define FORMAT_JPEG 1
#define FORMAT_TIFF 2

/* Bit of zExifGetThumbType: the thumbnail is a JPEG stream located by tag 513. */
#define THUMB_TYPE_JPEG 0x800

/* One tag's value: TIFF field type, number of values, the value's bytes. */
typedef struct ExifTagValue {
    uint32_t type;
    uint32_t count;
    void *data;
} ExifTagValue;

/* A block of bytes: thumbnails and raw Exif APP1 payloads. */
typedef struct ExifBuffer {
    unsigned char *data;
    uint32_t size;
} ExifBuffer;

/* One tag of a TifTagList. data is NULL for a type outside 1 to 12. */
typedef struct TifTagItem {
    uint32_t tag;
    uint32_t type;
    uint32_t count;
    void *data;
} TifTagItem;

/* The tags of one IFD, in the order of its entries. */
typedef struct TifTagList {
    int32_t count;
    TifTagItem **items;
} TifTagList;

/* Opaque handles. */
typedef struct CExifDoc CExifDoc;
typedef struct CExifReader CExifReader;

/* ---- Read-write family ------------------------------------------------ */

ZEXIF_API CExifDoc *zExifLoadFile(const void *path);
ZEXIF_API void zExifDestroy(CExifDoc *doc);
ZEXIF_API int zExifGetFileFormat(CExifDoc *doc);
ZEXIF_API int zExifIsExifExist(CExifDoc *doc);

/* Writes the document to path: a new file is built beside the file that
 * path names (its symbolic links followed) and then takes that file's place,
 * which keeps its owner, group, permission bits and hard links. A target that
 * is no regular file, or that the caller may not write to, is refused. On
 * failure errno tells the system's reason, or is 0. */
ZEXIF_API int zExifSaveFile(CExifDoc *doc, const char *path);

/* value->data of zExifGetTag is a malloc block of the caller's: free() it. */
ZEXIF_API int zExifGetTag(CExifDoc *doc, uint32_t tag, ExifTagValue *value, int ifd);
ZEXIF_API int zExifDelTag(CExifDoc *doc, uint32_t tag, int ifd);
ZEXIF_API int zExifSetTag(CExifDoc *doc, uint32_t tag, const ExifTagValue *value, int ifd);

/* out->data of the thumbnail getters is a malloc block of the caller's. */
ZEXIF_API int zExifIsThumbnailExist(CExifDoc *doc);
ZEXIF_API int zExifGetThumbnailData(CExifDoc *doc, ExifBuffer *out);
ZEXIF_API int zExifGetThumbDataEx(CExifDoc *doc, ExifBuffer *out, uint32_t type);
ZEXIF_API uint32_t zExifGetThumbType(CExifDoc *doc);
ZEXIF_API int zExifSetThumbnailData(CExifDoc *doc, const ExifBuffer *buffer);
ZEXIF_API int zExifSetThumbDataEx(CExifDoc *doc, const ExifBuffer *buffer, uint32_t type);

/* signature: the first four payload bytes, the first one in the low byte. */
ZEXIF_API int zExifRemoveMarker(CExifDoc *doc, int marker, uint32_t signature);
/* On success the document owns buffer->data (from zRExifGetExifMarker). */
ZEXIF_API int zExifInsertExifMarker(CExifDoc *doc, ExifBuffer *buffer);
/* On success the list has been released. */
ZEXIF_API int zExifSetTIFExifData(CExifDoc *doc, TifTagList *list);

ZEXIF_API int zExifIsAudioExist(CExifDoc *doc);
ZEXIF_API int zExifGetAudioFile(CExifDoc *doc, const void *path);
/* Returns 1, whether or not there was audio to remove (-1 for a null doc). */
ZEXIF_API int zExifRemoveAudio(CExifDoc *doc);
/* The path pointer is kept: the string must outlive the next save. */
ZEXIF_API int zExifSetAudioFile(CExifDoc *doc, const void *path);

/* ---- Read-only family ------------------------------------------------- */

ZEXIF_API CExifReader *zRExifBeginRead(const void *path);
ZEXIF_API void zRExifEndRead(CExifReader *reader);
ZEXIF_API int zRExifGetFileFormat(CExifReader *reader);
ZEXIF_API int zRExifIsExifExist(CExifReader *reader);

/* out->data stays the reader's. */
ZEXIF_API int zRExifGetTag(CExifReader *reader, uint32_t tag, ExifTagValue *out);

/* out->data of zRExifGetThumbnailData stays the reader's until zRExifEndRead. */
ZEXIF_API int zRExifIsThumbnailExist(CExifReader *reader);
ZEXIF_API int zRExifGetThumbnailData(CExifReader *reader, ExifBuffer *out);
/* out->data is for zExifInsertExifMarker to take over. */
ZEXIF_API int zRExifGetExifMarker(CExifReader *reader, ExifBuffer *out);
/* *out is for zExifSetTIFExifData to take over and release. A list that no
 * zExifSetTIFExifData takes is the caller's: the list, its items array, each
 * item and each item's data come from malloc and are released with free(). */
ZEXIF_API int zRExifGetTIFExifData(CExifReader *reader, TifTagList **out);

ZEXIF_API int zRExifIsAudioExist(CExifReader *reader);
ZEXIF_API int zRExifGetAudioFile(CExifReader *reader, const void *path);

/* ---- Extensions ------------------------------------------------------- */

#define ZEXIF_VERSION_MAJOR 0
#define ZEXIF_VERSION_MINOR 2
#define ZEXIF_VERSION_PATCH 0
/* "MAJOR.MINOR.PATCH" of the library that runs, which may be newer than the
 * header a program was built with. */
ZEXIF_API const char *zExifGetVersion(void);

/* Why the calling thread's last failed call failed. Success leaves the code
 * as it was: 0 means no call of this thread has failed yet. */
#define ZEXIF_ERROR_NONE 0
#define ZEXIF_ERROR_ARGUMENT 1  /* a null or invalid argument, or a call that doesn't apply to it */
#define ZEXIF_ERROR_OPEN 2      /* a file can't be opened or created */
#define ZEXIF_ERROR_FORMAT 3    /* not a JPEG or TIFF file, or a call for the other format */
#define ZEXIF_ERROR_DAMAGED 4   /* the file's structure can't be read */
#define ZEXIF_ERROR_NOT_FOUND 5 /* no such tag, IFD, segment, thumbnail or audio */
#define ZEXIF_ERROR_MEMORY 6    /* out of memory */
#define ZEXIF_ERROR_LIMIT 7     /* past one of the library's bounds: file size, value size, segment size */
#define ZEXIF_ERROR_WRITE 8     /* writing a file failed, the disk may be full */
#define ZEXIF_ERROR_ACCESS 9    /* the system refused access to a file */
#define ZEXIF_ERROR_READ 10     /* a file that opened can't be read as it was: it changed, or a save closed the source */
ZEXIF_API int zExifGetLastError(void);
/* One line of English for a code; a text saying the code is unknown for any
 * other number. */
ZEXIF_API const char *zExifGetErrorText(int error);

/* IFD ids of the calls that take one: 0, 1, 2... are the IFDs of the chain
 * by index; IFD_EXIF and IFD_GPS are the sub-IFDs that IFD 0 points to,
 * IFD_INTEROP the one that the Exif IFD points to. These calls work on exactly
 * the IFD named: orientation (274) in IFD 0 is IFD 0's, and tag 1 of the GPS
 * IFD is no tag of the Interop IFD. In a JPEG they work on the first Exif
 * segment that holds IFDs in the read-write family, on the last Exif segment
 * in front of the image data in the reader. */
#define IFD_EXIF 0x10000
#define IFD_GPS 0x10001
#define IFD_INTEROP 0x10002
/* value->data is a malloc block of the caller's, NULL for a value of no bytes
 * or of a type outside 1 to 12. */
ZEXIF_API int zExifGetTagAt(CExifDoc *doc, int ifd, uint32_t tag, ExifTagValue *value);
/* Replaces the tag's value or adds the tag at its sorted place. A missing IFD
 * is made with its pointer tag, and in a JPEG the Exif segment, TIFF header
 * and IFD 0 above it; no tag is added that wasn't asked for. A chain index
 * may be one past the last IFD of a JPEG; a TIFF gets no new chain IFD. */
ZEXIF_API int zExifSetTagAt(CExifDoc *doc, int ifd, uint32_t tag, const ExifTagValue *value);
/* A sub-IFD left without tags goes with its pointer, as with zExifDelTag. */
ZEXIF_API int zExifDelTagAt(CExifDoc *doc, int ifd, uint32_t tag);
/* Every tag of the IFD in entry order, as zRExifGetTIFExifData lists them;
 * release with zExifFreeTagList. */
ZEXIF_API int zExifGetTagList(CExifDoc *doc, int ifd, TifTagList **out);
/* out->data stays the reader's until zRExifEndRead; asking again gives the
 * same pointer. */
ZEXIF_API int zRExifGetTagAt(CExifReader *reader, int ifd, uint32_t tag, ExifTagValue *out);
typedef struct ExifTagKey {
    int32_t ifd;
    uint32_t tag;
} ExifTagKey;
/* Looks up count tags at once, each as zRExifGetTagAt would; out[i] is
 * {0, 0, NULL} for a tag that isn't there or an IFD id that names none.
 * Returns the number of tags found, -1 for a null reader, a null array with
 * count > 0, a negative count, or a lookup that ran out of memory or failed
 * to read the file (the last error tells which). */
ZEXIF_API int zRExifGetTagsAt(CExifReader *reader, const ExifTagKey *keys, int32_t count, ExifTagValue *out);
/* Release with zExifFreeTagList. */
ZEXIF_API int zRExifGetTagList(CExifReader *reader, int ifd, TifTagList **out);

/* The segments of a JPEG document. marker is the second byte of the marker
 * code (0xD8 SOI, 0xE1 APP1, 0xFE COM...) or MARKER_SCAN_DATA for the
 * entropy-coded data; offset and size locate the payload, the bytes behind
 * the length field, in the file loaded. A segment made or changed since the
 * load has offset 0; SOI and EOI have neither. The calls fail on a TIFF
 * document. The document's Exif segment, SOI, EOI, SOS and the scan data
 * can't be set, inserted or removed here: the tag, thumbnail and marker
 * calls do that. */
#define MARKER_SCAN_DATA 161
typedef struct ExifSegment {
    int32_t marker;
    uint32_t offset;
    uint32_t size;
} ExifSegment;
/* *out is a malloc array of *count segments in file order: free() it. */
ZEXIF_API int zExifGetSegmentList(CExifDoc *doc, ExifSegment **out, int32_t *count);
/* The payload as loaded or set; release with zExifFreeBuffer. */
ZEXIF_API int zExifGetSegmentData(CExifDoc *doc, int32_t index, ExifBuffer *out);
/* data is copied; a payload takes at most 65,533 bytes. */
ZEXIF_API int zExifSetSegmentData(CExifDoc *doc, int32_t index, const ExifBuffer *data);
/* An APPn (0xE0 to 0xEF) or COM (0xFE) segment, behind the last APPn or COM
 * segment in front of the first table, frame or scan segment. */
ZEXIF_API int zExifInsertSegment(CExifDoc *doc, int32_t marker, const ExifBuffer *data);
ZEXIF_API int zExifRemoveSegment(CExifDoc *doc, int32_t index);

/* A document of a copy of the bytes. */
ZEXIF_API CExifDoc *zExifLoadMemory(const void *data, uint32_t size);
/* The whole new file, release with zExifFreeBuffer. The document's source
 * stays open, so the document can still be edited and saved. */
ZEXIF_API int zExifSaveMemory(CExifDoc *doc, ExifBuffer *out);
/* The reader reads the caller's bytes, which must outlive it. */
ZEXIF_API CExifReader *zRExifBeginReadMemory(const void *data, uint32_t size);

/* The name of a tag in the IFD of that id, or NULL when the table doesn't
 * know it. */
ZEXIF_API const char *zExifGetTagName(int ifd, uint32_t tag);
/* A tag by its name, in any case: the id of its IFD (0 for a tag of the
 * chain's IFDs), its number and the type it usually has. */
ZEXIF_API int zExifFindTag(const char *name, int *ifd, uint32_t *tag, uint32_t *type);

/* Releases a list of zExifGetTagList, zRExifGetTagList or zRExifGetTIFExifData;
 * NULL is ignored. */
ZEXIF_API void zExifFreeTagList(TifTagList *list);
/* Releases the data of any buffer the library hands out to be the caller's
 * (a thumbnail copy, zRExifGetExifMarker, zExifGetSegmentData,
 * zExifSaveMemory) and clears the buffer; a buffer without data is ignored.
 * Not for zRExifGetThumbnailData, whose bytes stay the reader's. */
ZEXIF_API void zExifFreeBuffer(ExifBuffer *buffer);

#ifdef __cplusplus
}
#endif

#endif
