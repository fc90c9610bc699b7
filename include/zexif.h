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

#ifdef __cplusplus
}
#endif

#endif
