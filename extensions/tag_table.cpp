#include "extensions/tag_table.h"

#include <strings.h>

#include "extensions/ifd_ids.h"
#include "load/tiff_types.h"
#include "platform/failure_reason.h"
#include "zexif.h"

namespace {

// TIFF baseline and extension tags, and the private ones cameras and editors
// put into IFD 0 and IFD 1; then the Exif, GPS and Interoperability IFDs.
const TagName TAG_NAMES[] = {
    {IFD_CHAIN, 254, TIFF_LONG, "NewSubfileType"},
    {IFD_CHAIN, 255, TIFF_SHORT, "SubfileType"},
    {IFD_CHAIN, 256, TIFF_LONG, "ImageWidth"},
    {IFD_CHAIN, 257, TIFF_LONG, "ImageLength"},
    {IFD_CHAIN, 258, TIFF_SHORT, "BitsPerSample"},
    {IFD_CHAIN, 259, TIFF_SHORT, "Compression"},
    {IFD_CHAIN, 262, TIFF_SHORT, "PhotometricInterpretation"},
    {IFD_CHAIN, 263, TIFF_SHORT, "Threshholding"},
    {IFD_CHAIN, 264, TIFF_SHORT, "CellWidth"},
    {IFD_CHAIN, 265, TIFF_SHORT, "CellLength"},
    {IFD_CHAIN, 266, TIFF_SHORT, "FillOrder"},
    {IFD_CHAIN, 269, TIFF_ASCII, "DocumentName"},
    {IFD_CHAIN, 270, TIFF_ASCII, "ImageDescription"},
    {IFD_CHAIN, 271, TIFF_ASCII, "Make"},
    {IFD_CHAIN, 272, TIFF_ASCII, "Model"},
    {IFD_CHAIN, 273, TIFF_LONG, "StripOffsets"},
    {IFD_CHAIN, 274, TIFF_SHORT, "Orientation"},
    {IFD_CHAIN, 277, TIFF_SHORT, "SamplesPerPixel"},
    {IFD_CHAIN, 278, TIFF_LONG, "RowsPerStrip"},
    {IFD_CHAIN, 279, TIFF_LONG, "StripByteCounts"},
    {IFD_CHAIN, 280, TIFF_SHORT, "MinSampleValue"},
    {IFD_CHAIN, 281, TIFF_SHORT, "MaxSampleValue"},
    {IFD_CHAIN, 282, TIFF_RATIONAL, "XResolution"},
    {IFD_CHAIN, 283, TIFF_RATIONAL, "YResolution"},
    {IFD_CHAIN, 284, TIFF_SHORT, "PlanarConfiguration"},
    {IFD_CHAIN, 285, TIFF_ASCII, "PageName"},
    {IFD_CHAIN, 286, TIFF_RATIONAL, "XPosition"},
    {IFD_CHAIN, 287, TIFF_RATIONAL, "YPosition"},
    {IFD_CHAIN, 288, TIFF_LONG, "FreeOffsets"},
    {IFD_CHAIN, 289, TIFF_LONG, "FreeByteCounts"},
    {IFD_CHAIN, 290, TIFF_SHORT, "GrayResponseUnit"},
    {IFD_CHAIN, 291, TIFF_SHORT, "GrayResponseCurve"},
    {IFD_CHAIN, 292, TIFF_LONG, "T4Options"},
    {IFD_CHAIN, 293, TIFF_LONG, "T6Options"},
    {IFD_CHAIN, 296, TIFF_SHORT, "ResolutionUnit"},
    {IFD_CHAIN, 297, TIFF_SHORT, "PageNumber"},
    {IFD_CHAIN, 301, TIFF_SHORT, "TransferFunction"},
    {IFD_CHAIN, 305, TIFF_ASCII, "Software"},
    {IFD_CHAIN, 306, TIFF_ASCII, "DateTime"},
    {IFD_CHAIN, 315, TIFF_ASCII, "Artist"},
    {IFD_CHAIN, 316, TIFF_ASCII, "HostComputer"},
    {IFD_CHAIN, 317, TIFF_SHORT, "Predictor"},
    {IFD_CHAIN, 318, TIFF_RATIONAL, "WhitePoint"},
    {IFD_CHAIN, 319, TIFF_RATIONAL, "PrimaryChromaticities"},
    {IFD_CHAIN, 320, TIFF_SHORT, "ColorMap"},
    {IFD_CHAIN, 321, TIFF_SHORT, "HalftoneHints"},
    {IFD_CHAIN, 322, TIFF_LONG, "TileWidth"},
    {IFD_CHAIN, 323, TIFF_LONG, "TileLength"},
    {IFD_CHAIN, 324, TIFF_LONG, "TileOffsets"},
    {IFD_CHAIN, 325, TIFF_LONG, "TileByteCounts"},
    {IFD_CHAIN, 330, TIFF_LONG, "SubIFDs"},
    {IFD_CHAIN, 332, TIFF_SHORT, "InkSet"},
    {IFD_CHAIN, 333, TIFF_ASCII, "InkNames"},
    {IFD_CHAIN, 334, TIFF_SHORT, "NumberOfInks"},
    {IFD_CHAIN, 336, TIFF_BYTE, "DotRange"},
    {IFD_CHAIN, 337, TIFF_ASCII, "TargetPrinter"},
    {IFD_CHAIN, 338, TIFF_SHORT, "ExtraSamples"},
    {IFD_CHAIN, 339, TIFF_SHORT, "SampleFormat"},
    {IFD_CHAIN, 340, TIFF_SHORT, "SMinSampleValue"},
    {IFD_CHAIN, 341, TIFF_SHORT, "SMaxSampleValue"},
    {IFD_CHAIN, 342, TIFF_SHORT, "TransferRange"},
    {IFD_CHAIN, 347, TIFF_UNDEFINED, "JPEGTables"},
    {IFD_CHAIN, 512, TIFF_SHORT, "JPEGProc"},
    {IFD_CHAIN, 513, TIFF_LONG, "JPEGInterchangeFormat"},
    {IFD_CHAIN, 514, TIFF_LONG, "JPEGInterchangeFormatLength"},
    {IFD_CHAIN, 529, TIFF_RATIONAL, "YCbCrCoefficients"},
    {IFD_CHAIN, 530, TIFF_SHORT, "YCbCrSubSampling"},
    {IFD_CHAIN, 531, TIFF_SHORT, "YCbCrPositioning"},
    {IFD_CHAIN, 532, TIFF_RATIONAL, "ReferenceBlackWhite"},
    {IFD_CHAIN, 700, TIFF_BYTE, "XMLPacket"},
    {IFD_CHAIN, 18246, TIFF_SHORT, "Rating"},
    {IFD_CHAIN, 18249, TIFF_SHORT, "RatingPercent"},
    {IFD_CHAIN, 32781, TIFF_ASCII, "ImageID"},
    {IFD_CHAIN, 33432, TIFF_ASCII, "Copyright"},
    {IFD_CHAIN, 33723, TIFF_LONG, "IPTCNAA"},
    {IFD_CHAIN, 34377, TIFF_BYTE, "ImageResources"},
    {IFD_CHAIN, 34665, TIFF_LONG, "ExifIFDPointer"},
    {IFD_CHAIN, 34675, TIFF_UNDEFINED, "InterColorProfile"},
    {IFD_CHAIN, 34853, TIFF_LONG, "GPSInfoIFDPointer"},
    {IFD_CHAIN, 40091, TIFF_BYTE, "XPTitle"},
    {IFD_CHAIN, 40092, TIFF_BYTE, "XPComment"},
    {IFD_CHAIN, 40093, TIFF_BYTE, "XPAuthor"},
    {IFD_CHAIN, 40094, TIFF_BYTE, "XPKeywords"},
    {IFD_CHAIN, 40095, TIFF_BYTE, "XPSubject"},
    {IFD_CHAIN, 50341, TIFF_UNDEFINED, "PrintImageMatching"},

    {IFD_EXIF, 33434, TIFF_RATIONAL, "ExposureTime"},
    {IFD_EXIF, 33437, TIFF_RATIONAL, "FNumber"},
    {IFD_EXIF, 34850, TIFF_SHORT, "ExposureProgram"},
    {IFD_EXIF, 34852, TIFF_ASCII, "SpectralSensitivity"},
    {IFD_EXIF, 34855, TIFF_SHORT, "ISOSpeedRatings"},
    {IFD_EXIF, 34856, TIFF_UNDEFINED, "OECF"},
    {IFD_EXIF, 34864, TIFF_SHORT, "SensitivityType"},
    {IFD_EXIF, 34865, TIFF_LONG, "StandardOutputSensitivity"},
    {IFD_EXIF, 34866, TIFF_LONG, "RecommendedExposureIndex"},
    {IFD_EXIF, 34867, TIFF_LONG, "ISOSpeed"},
    {IFD_EXIF, 34868, TIFF_LONG, "ISOSpeedLatitudeyyy"},
    {IFD_EXIF, 34869, TIFF_LONG, "ISOSpeedLatitudezzz"},
    {IFD_EXIF, 36864, TIFF_UNDEFINED, "ExifVersion"},
    {IFD_EXIF, 36867, TIFF_ASCII, "DateTimeOriginal"},
    {IFD_EXIF, 36868, TIFF_ASCII, "DateTimeDigitized"},
    {IFD_EXIF, 36880, TIFF_ASCII, "OffsetTime"},
    {IFD_EXIF, 36881, TIFF_ASCII, "OffsetTimeOriginal"},
    {IFD_EXIF, 36882, TIFF_ASCII, "OffsetTimeDigitized"},
    {IFD_EXIF, 37121, TIFF_UNDEFINED, "ComponentsConfiguration"},
    {IFD_EXIF, 37122, TIFF_RATIONAL, "CompressedBitsPerPixel"},
    {IFD_EXIF, 37377, TIFF_SRATIONAL, "ShutterSpeedValue"},
    {IFD_EXIF, 37378, TIFF_RATIONAL, "ApertureValue"},
    {IFD_EXIF, 37379, TIFF_SRATIONAL, "BrightnessValue"},
    {IFD_EXIF, 37380, TIFF_SRATIONAL, "ExposureBiasValue"},
    {IFD_EXIF, 37381, TIFF_RATIONAL, "MaxApertureValue"},
    {IFD_EXIF, 37382, TIFF_RATIONAL, "SubjectDistance"},
    {IFD_EXIF, 37383, TIFF_SHORT, "MeteringMode"},
    {IFD_EXIF, 37384, TIFF_SHORT, "LightSource"},
    {IFD_EXIF, 37385, TIFF_SHORT, "Flash"},
    {IFD_EXIF, 37386, TIFF_RATIONAL, "FocalLength"},
    {IFD_EXIF, 37396, TIFF_SHORT, "SubjectArea"},
    {IFD_EXIF, 37500, TIFF_UNDEFINED, "MakerNote"},
    {IFD_EXIF, 37510, TIFF_UNDEFINED, "UserComment"},
    {IFD_EXIF, 37520, TIFF_ASCII, "SubSecTime"},
    {IFD_EXIF, 37521, TIFF_ASCII, "SubSecTimeOriginal"},
    {IFD_EXIF, 37522, TIFF_ASCII, "SubSecTimeDigitized"},
    {IFD_EXIF, 37888, TIFF_SRATIONAL, "Temperature"},
    {IFD_EXIF, 37889, TIFF_RATIONAL, "Humidity"},
    {IFD_EXIF, 37890, TIFF_RATIONAL, "Pressure"},
    {IFD_EXIF, 37891, TIFF_SRATIONAL, "WaterDepth"},
    {IFD_EXIF, 37892, TIFF_RATIONAL, "Acceleration"},
    {IFD_EXIF, 37893, TIFF_SRATIONAL, "CameraElevationAngle"},
    {IFD_EXIF, 40960, TIFF_UNDEFINED, "FlashpixVersion"},
    {IFD_EXIF, 40961, TIFF_SHORT, "ColorSpace"},
    {IFD_EXIF, 40962, TIFF_LONG, "PixelXDimension"},
    {IFD_EXIF, 40963, TIFF_LONG, "PixelYDimension"},
    {IFD_EXIF, 40964, TIFF_ASCII, "RelatedSoundFile"},
    {IFD_EXIF, 40965, TIFF_LONG, "InteroperabilityIFDPointer"},
    {IFD_EXIF, 41483, TIFF_RATIONAL, "FlashEnergy"},
    {IFD_EXIF, 41484, TIFF_UNDEFINED, "SpatialFrequencyResponse"},
    {IFD_EXIF, 41486, TIFF_RATIONAL, "FocalPlaneXResolution"},
    {IFD_EXIF, 41487, TIFF_RATIONAL, "FocalPlaneYResolution"},
    {IFD_EXIF, 41488, TIFF_SHORT, "FocalPlaneResolutionUnit"},
    {IFD_EXIF, 41492, TIFF_SHORT, "SubjectLocation"},
    {IFD_EXIF, 41493, TIFF_RATIONAL, "ExposureIndex"},
    {IFD_EXIF, 41495, TIFF_SHORT, "SensingMethod"},
    {IFD_EXIF, 41728, TIFF_UNDEFINED, "FileSource"},
    {IFD_EXIF, 41729, TIFF_UNDEFINED, "SceneType"},
    {IFD_EXIF, 41730, TIFF_UNDEFINED, "CFAPattern"},
    {IFD_EXIF, 41985, TIFF_SHORT, "CustomRendered"},
    {IFD_EXIF, 41986, TIFF_SHORT, "ExposureMode"},
    {IFD_EXIF, 41987, TIFF_SHORT, "WhiteBalance"},
    {IFD_EXIF, 41988, TIFF_RATIONAL, "DigitalZoomRatio"},
    {IFD_EXIF, 41989, TIFF_SHORT, "FocalLengthIn35mmFilm"},
    {IFD_EXIF, 41990, TIFF_SHORT, "SceneCaptureType"},
    {IFD_EXIF, 41991, TIFF_SHORT, "GainControl"},
    {IFD_EXIF, 41992, TIFF_SHORT, "Contrast"},
    {IFD_EXIF, 41993, TIFF_SHORT, "Saturation"},
    {IFD_EXIF, 41994, TIFF_SHORT, "Sharpness"},
    {IFD_EXIF, 41995, TIFF_UNDEFINED, "DeviceSettingDescription"},
    {IFD_EXIF, 41996, TIFF_SHORT, "SubjectDistanceRange"},
    {IFD_EXIF, 42016, TIFF_ASCII, "ImageUniqueID"},
    {IFD_EXIF, 42032, TIFF_ASCII, "CameraOwnerName"},
    {IFD_EXIF, 42033, TIFF_ASCII, "BodySerialNumber"},
    {IFD_EXIF, 42034, TIFF_RATIONAL, "LensSpecification"},
    {IFD_EXIF, 42035, TIFF_ASCII, "LensMake"},
    {IFD_EXIF, 42036, TIFF_ASCII, "LensModel"},
    {IFD_EXIF, 42037, TIFF_ASCII, "LensSerialNumber"},
    {IFD_EXIF, 42240, TIFF_RATIONAL, "Gamma"},

    {IFD_GPS, 0, TIFF_BYTE, "GPSVersionID"},
    {IFD_GPS, 1, TIFF_ASCII, "GPSLatitudeRef"},
    {IFD_GPS, 2, TIFF_RATIONAL, "GPSLatitude"},
    {IFD_GPS, 3, TIFF_ASCII, "GPSLongitudeRef"},
    {IFD_GPS, 4, TIFF_RATIONAL, "GPSLongitude"},
    {IFD_GPS, 5, TIFF_BYTE, "GPSAltitudeRef"},
    {IFD_GPS, 6, TIFF_RATIONAL, "GPSAltitude"},
    {IFD_GPS, 7, TIFF_RATIONAL, "GPSTimeStamp"},
    {IFD_GPS, 8, TIFF_ASCII, "GPSSatellites"},
    {IFD_GPS, 9, TIFF_ASCII, "GPSStatus"},
    {IFD_GPS, 10, TIFF_ASCII, "GPSMeasureMode"},
    {IFD_GPS, 11, TIFF_RATIONAL, "GPSDOP"},
    {IFD_GPS, 12, TIFF_ASCII, "GPSSpeedRef"},
    {IFD_GPS, 13, TIFF_RATIONAL, "GPSSpeed"},
    {IFD_GPS, 14, TIFF_ASCII, "GPSTrackRef"},
    {IFD_GPS, 15, TIFF_RATIONAL, "GPSTrack"},
    {IFD_GPS, 16, TIFF_ASCII, "GPSImgDirectionRef"},
    {IFD_GPS, 17, TIFF_RATIONAL, "GPSImgDirection"},
    {IFD_GPS, 18, TIFF_ASCII, "GPSMapDatum"},
    {IFD_GPS, 19, TIFF_ASCII, "GPSDestLatitudeRef"},
    {IFD_GPS, 20, TIFF_RATIONAL, "GPSDestLatitude"},
    {IFD_GPS, 21, TIFF_ASCII, "GPSDestLongitudeRef"},
    {IFD_GPS, 22, TIFF_RATIONAL, "GPSDestLongitude"},
    {IFD_GPS, 23, TIFF_ASCII, "GPSDestBearingRef"},
    {IFD_GPS, 24, TIFF_RATIONAL, "GPSDestBearing"},
    {IFD_GPS, 25, TIFF_ASCII, "GPSDestDistanceRef"},
    {IFD_GPS, 26, TIFF_RATIONAL, "GPSDestDistance"},
    {IFD_GPS, 27, TIFF_UNDEFINED, "GPSProcessingMethod"},
    {IFD_GPS, 28, TIFF_UNDEFINED, "GPSAreaInformation"},
    {IFD_GPS, 29, TIFF_ASCII, "GPSDateStamp"},
    {IFD_GPS, 30, TIFF_SHORT, "GPSDifferential"},
    {IFD_GPS, 31, TIFF_RATIONAL, "GPSHPositioningError"},

    {IFD_INTEROP, 1, TIFF_ASCII, "InteroperabilityIndex"},
    {IFD_INTEROP, 2, TIFF_UNDEFINED, "InteroperabilityVersion"},
    {IFD_INTEROP, 4096, TIFF_ASCII, "RelatedImageFileFormat"},
    {IFD_INTEROP, 4097, TIFF_LONG, "RelatedImageWidth"},
    {IFD_INTEROP, 4098, TIFF_LONG, "RelatedImageLength"},
};

}  // namespace

const TagName *FindTagByName(const char *name)
{
    for (const TagName &tag : TAG_NAMES) {
        if (strcasecmp(tag.name, name) == 0) return &tag;
    }
    return nullptr;
}

const TagName *FindTagByNumber(int ifd, uint32_t number)
{
    const int group = IsChainIfd(ifd) ? IFD_CHAIN : ifd;
    for (const TagName &tag : TAG_NAMES) {
        if (tag.group == group && tag.number == number) return &tag;
    }
    return nullptr;
}

const char *zExifGetTagName(int ifd, uint32_t tag)
{
    BeginExport();
    const TagName *known = IsIfdId(ifd) ? FindTagByNumber(ifd, tag) : nullptr;
    if (known != nullptr) return known->name;
    FailExport(IsIfdId(ifd) ? ZEXIF_ERROR_NOT_FOUND : ZEXIF_ERROR_ARGUMENT);
    return nullptr;
}

int zExifFindTag(const char *name, int *ifd, uint32_t *tag, uint32_t *type)
{
    BeginExport();
    if (name == nullptr || ifd == nullptr || tag == nullptr || type == nullptr) return FailExport(ZEXIF_ERROR_ARGUMENT);
    const TagName *known = FindTagByName(name);
    if (known == nullptr) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    *ifd = known->group;
    *tag = known->number;
    *type = known->type;
    return 0;
}
