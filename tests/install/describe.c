#include <stdio.h>
#include <zexif.h>

/* Writes an image description into a copy of a JPEG or TIFF file with the
 * read-write family, then reads it back from the copy with the read-only one. */
int main(int argc, char **argv)
{
    if (argc != 3) {
        fprintf(stderr, "usage: %s IN OUT\n", argv[0]);
        return 2;
    }
    CExifDoc *doc = zExifLoadFile(argv[1]);
    if (doc == NULL) {
        fprintf(stderr, "cannot load %s\n", argv[1]);
        return 1;
    }
    char caption[] = "Harbour at dawn";
    ExifTagValue value = {2 /* ASCII */, sizeof caption, caption};
    int failed = zExifSetTag(doc, 270 /* ImageDescription */, &value, 0) != 0 || zExifSaveFile(doc, argv[2]) != 0;
    zExifDestroy(doc);
    if (failed) {
        fprintf(stderr, "cannot write %s\n", argv[2]);
        return 1;
    }

    CExifReader *reader = zRExifBeginRead(argv[2]);
    ExifTagValue found = {0};
    if (reader == NULL || zRExifGetTag(reader, 270, &found) != 0) {
        fprintf(stderr, "no description in %s\n", argv[2]);
        zRExifEndRead(reader);
        return 1;
    }
    printf("%s: ImageDescription \"%s\"\n", argv[2], (const char *)found.data);
    zRExifEndRead(reader);
    return 0;
}
