#include "tools/zexif/tag_names.h"

#include <strings.h>

namespace {

constexpr uint32_t TAG_EXIF_IFD = 34665;
constexpr uint32_t TAG_GPS_IFD = 34853;
constexpr uint32_t TAG_INTEROP_IFD = 40965;

// TIFF baseline and extension tags, and the private ones cameras and editors
// put into IFD 0 and IFD 1; then the Exif, GPS and Interoperability IFDs.
const TagName TAG_NAMES[] = {
    {GROUP_TIFF, 254, "NewSubfileType"},
    {GROUP_TIFF, 255, "SubfileType"},
    {GROUP_TIFF, 256, "ImageWidth"},
    {GROUP_TIFF, 257, "ImageLength"},
    {GROUP_TIFF, 258, "BitsPerSample"},
    {GROUP_TIFF, 259, "Compression"},
    {GROUP_TIFF, 262, "PhotometricInterpretation"},
    {GROUP_TIFF, 263, "Threshholding"},
    {GROUP_TIFF, 264, "CellWidth"},
    {GROUP_TIFF, 265, "CellLength"},
    {GROUP_TIFF, 266, "FillOrder"},
    {GROUP_TIFF, 269, "DocumentName"},
    {GROUP_TIFF, 270, "ImageDescription"},
    {GROUP_TIFF, 271, "Make"},
    {GROUP_TIFF, 272, "Model"},
    {GROUP_TIFF, 273, "StripOffsets"},
    {GROUP_TIFF, 274, "Orientation"},
    {GROUP_TIFF, 277, "SamplesPerPixel"},
    {GROUP_TIFF, 278, "RowsPerStrip"},
    {GROUP_TIFF, 279, "StripByteCounts"},
    {GROUP_TIFF, 280, "MinSampleValue"},
    {GROUP_TIFF, 281, "MaxSampleValue"},
    {GROUP_TIFF, 282, "XResolution"},
    {GROUP_TIFF, 283, "YResolution"},
    {GROUP_TIFF, 284, "PlanarConfiguration"},
    {GROUP_TIFF, 285, "PageName"},
    {GROUP_TIFF, 286, "XPosition"},
    {GROUP_TIFF, 287, "YPosition"},
    {GROUP_TIFF, 288, "FreeOffsets"},
    {GROUP_TIFF, 289, "FreeByteCounts"},
    {GROUP_TIFF, 290, "GrayResponseUnit"},
    {GROUP_TIFF, 291, "GrayResponseCurve"},
    {GROUP_TIFF, 292, "T4Options"},
    {GROUP_TIFF, 293, "T6Options"},
    {GROUP_TIFF, 296, "ResolutionUnit"},
    {GROUP_TIFF, 297, "PageNumber"},
    {GROUP_TIFF, 301, "TransferFunction"},
    {GROUP_TIFF, 305, "Software"},
    {GROUP_TIFF, 306, "DateTime"},
    {GROUP_TIFF, 315, "Artist"},
    {GROUP_TIFF, 316, "HostComputer"},
    {GROUP_TIFF, 317, "Predictor"},
    {GROUP_TIFF, 318, "WhitePoint"},
    {GROUP_TIFF, 319, "PrimaryChromaticities"},
    {GROUP_TIFF, 320, "ColorMap"},
    {GROUP_TIFF, 321, "HalftoneHints"},
    {GROUP_TIFF, 322, "TileWidth"},
    {GROUP_TIFF, 323, "TileLength"},
    {GROUP_TIFF, 324, "TileOffsets"},
    {GROUP_TIFF, 325, "TileByteCounts"},
    {GROUP_TIFF, 330, "SubIFDs"},
    {GROUP_TIFF, 332, "InkSet"},
    {GROUP_TIFF, 333, "InkNames"},
    {GROUP_TIFF, 334, "NumberOfInks"},
    {GROUP_TIFF, 336, "DotRange"},
    {GROUP_TIFF, 337, "TargetPrinter"},
    {GROUP_TIFF, 338, "ExtraSamples"},
    {GROUP_TIFF, 339, "SampleFormat"},
    {GROUP_TIFF, 340, "SMinSampleValue"},
    {GROUP_TIFF, 341, "SMaxSampleValue"},
    {GROUP_TIFF, 342, "TransferRange"},
    {GROUP_TIFF, 347, "JPEGTables"},
    {GROUP_TIFF, 512, "JPEGProc"},
    {GROUP_TIFF, 513, "JPEGInterchangeFormat"},
    {GROUP_TIFF, 514, "JPEGInterchangeFormatLength"},
    {GROUP_TIFF, 529, "YCbCrCoefficients"},
    {GROUP_TIFF, 530, "YCbCrSubSampling"},
    {GROUP_TIFF, 531, "YCbCrPositioning"},
    {GROUP_TIFF, 532, "ReferenceBlackWhite"},
    {GROUP_TIFF, 700, "XMLPacket"},
    {GROUP_TIFF, 18246, "Rating"},
    {GROUP_TIFF, 18249, "RatingPercent"},
    {GROUP_TIFF, 32781, "ImageID"},
    {GROUP_TIFF, 33432, "Copyright"},
    {GROUP_TIFF, 33723, "IPTCNAA"},
    {GROUP_TIFF, 34377, "ImageResources"},
    {GROUP_TIFF, 34665, "ExifIFDPointer"},
    {GROUP_TIFF, 34675, "InterColorProfile"},
    {GROUP_TIFF, 34853, "GPSInfoIFDPointer"},
    {GROUP_TIFF, 40091, "XPTitle"},
    {GROUP_TIFF, 40092, "XPComment"},
    {GROUP_TIFF, 40093, "XPAuthor"},
    {GROUP_TIFF, 40094, "XPKeywords"},
    {GROUP_TIFF, 40095, "XPSubject"},
    {GROUP_TIFF, 50341, "PrintImageMatching"},

    {GROUP_EXIF, 33434, "ExposureTime"},
    {GROUP_EXIF, 33437, "FNumber"},
    {GROUP_EXIF, 34850, "ExposureProgram"},
    {GROUP_EXIF, 34852, "SpectralSensitivity"},
    {GROUP_EXIF, 34855, "ISOSpeedRatings"},
    {GROUP_EXIF, 34856, "OECF"},
    {GROUP_EXIF, 34864, "SensitivityType"},
    {GROUP_EXIF, 34865, "StandardOutputSensitivity"},
    {GROUP_EXIF, 34866, "RecommendedExposureIndex"},
    {GROUP_EXIF, 34867, "ISOSpeed"},
    {GROUP_EXIF, 34868, "ISOSpeedLatitudeyyy"},
    {GROUP_EXIF, 34869, "ISOSpeedLatitudezzz"},
    {GROUP_EXIF, 36864, "ExifVersion"},
    {GROUP_EXIF, 36867, "DateTimeOriginal"},
    {GROUP_EXIF, 36868, "DateTimeDigitized"},
    {GROUP_EXIF, 36880, "OffsetTime"},
    {GROUP_EXIF, 36881, "OffsetTimeOriginal"},
    {GROUP_EXIF, 36882, "OffsetTimeDigitized"},
    {GROUP_EXIF, 37121, "ComponentsConfiguration"},
    {GROUP_EXIF, 37122, "CompressedBitsPerPixel"},
    {GROUP_EXIF, 37377, "ShutterSpeedValue"},
    {GROUP_EXIF, 37378, "ApertureValue"},
    {GROUP_EXIF, 37379, "BrightnessValue"},
    {GROUP_EXIF, 37380, "ExposureBiasValue"},
    {GROUP_EXIF, 37381, "MaxApertureValue"},
    {GROUP_EXIF, 37382, "SubjectDistance"},
    {GROUP_EXIF, 37383, "MeteringMode"},
    {GROUP_EXIF, 37384, "LightSource"},
    {GROUP_EXIF, 37385, "Flash"},
    {GROUP_EXIF, 37386, "FocalLength"},
    {GROUP_EXIF, 37396, "SubjectArea"},
    {GROUP_EXIF, 37500, "MakerNote"},
    {GROUP_EXIF, 37510, "UserComment"},
    {GROUP_EXIF, 37520, "SubSecTime"},
    {GROUP_EXIF, 37521, "SubSecTimeOriginal"},
    {GROUP_EXIF, 37522, "SubSecTimeDigitized"},
    {GROUP_EXIF, 37888, "Temperature"},
    {GROUP_EXIF, 37889, "Humidity"},
    {GROUP_EXIF, 37890, "Pressure"},
    {GROUP_EXIF, 37891, "WaterDepth"},
    {GROUP_EXIF, 37892, "Acceleration"},
    {GROUP_EXIF, 37893, "CameraElevationAngle"},
    {GROUP_EXIF, 40960, "FlashpixVersion"},
    {GROUP_EXIF, 40961, "ColorSpace"},
    {GROUP_EXIF, 40962, "PixelXDimension"},
    {GROUP_EXIF, 40963, "PixelYDimension"},
    {GROUP_EXIF, 40964, "RelatedSoundFile"},
    {GROUP_EXIF, 40965, "InteroperabilityIFDPointer"},
    {GROUP_EXIF, 41483, "FlashEnergy"},
    {GROUP_EXIF, 41484, "SpatialFrequencyResponse"},
    {GROUP_EXIF, 41486, "FocalPlaneXResolution"},
    {GROUP_EXIF, 41487, "FocalPlaneYResolution"},
    {GROUP_EXIF, 41488, "FocalPlaneResolutionUnit"},
    {GROUP_EXIF, 41492, "SubjectLocation"},
    {GROUP_EXIF, 41493, "ExposureIndex"},
    {GROUP_EXIF, 41495, "SensingMethod"},
    {GROUP_EXIF, 41728, "FileSource"},
    {GROUP_EXIF, 41729, "SceneType"},
    {GROUP_EXIF, 41730, "CFAPattern"},
    {GROUP_EXIF, 41985, "CustomRendered"},
    {GROUP_EXIF, 41986, "ExposureMode"},
    {GROUP_EXIF, 41987, "WhiteBalance"},
    {GROUP_EXIF, 41988, "DigitalZoomRatio"},
    {GROUP_EXIF, 41989, "FocalLengthIn35mmFilm"},
    {GROUP_EXIF, 41990, "SceneCaptureType"},
    {GROUP_EXIF, 41991, "GainControl"},
    {GROUP_EXIF, 41992, "Contrast"},
    {GROUP_EXIF, 41993, "Saturation"},
    {GROUP_EXIF, 41994, "Sharpness"},
    {GROUP_EXIF, 41995, "DeviceSettingDescription"},
    {GROUP_EXIF, 41996, "SubjectDistanceRange"},
    {GROUP_EXIF, 42016, "ImageUniqueID"},
    {GROUP_EXIF, 42032, "CameraOwnerName"},
    {GROUP_EXIF, 42033, "BodySerialNumber"},
    {GROUP_EXIF, 42034, "LensSpecification"},
    {GROUP_EXIF, 42035, "LensMake"},
    {GROUP_EXIF, 42036, "LensModel"},
    {GROUP_EXIF, 42037, "LensSerialNumber"},
    {GROUP_EXIF, 42240, "Gamma"},

    {GROUP_GPS, 0, "GPSVersionID"},
    {GROUP_GPS, 1, "GPSLatitudeRef"},
    {GROUP_GPS, 2, "GPSLatitude"},
    {GROUP_GPS, 3, "GPSLongitudeRef"},
    {GROUP_GPS, 4, "GPSLongitude"},
    {GROUP_GPS, 5, "GPSAltitudeRef"},
    {GROUP_GPS, 6, "GPSAltitude"},
    {GROUP_GPS, 7, "GPSTimeStamp"},
    {GROUP_GPS, 8, "GPSSatellites"},
    {GROUP_GPS, 9, "GPSStatus"},
    {GROUP_GPS, 10, "GPSMeasureMode"},
    {GROUP_GPS, 11, "GPSDOP"},
    {GROUP_GPS, 12, "GPSSpeedRef"},
    {GROUP_GPS, 13, "GPSSpeed"},
    {GROUP_GPS, 14, "GPSTrackRef"},
    {GROUP_GPS, 15, "GPSTrack"},
    {GROUP_GPS, 16, "GPSImgDirectionRef"},
    {GROUP_GPS, 17, "GPSImgDirection"},
    {GROUP_GPS, 18, "GPSMapDatum"},
    {GROUP_GPS, 19, "GPSDestLatitudeRef"},
    {GROUP_GPS, 20, "GPSDestLatitude"},
    {GROUP_GPS, 21, "GPSDestLongitudeRef"},
    {GROUP_GPS, 22, "GPSDestLongitude"},
    {GROUP_GPS, 23, "GPSDestBearingRef"},
    {GROUP_GPS, 24, "GPSDestBearing"},
    {GROUP_GPS, 25, "GPSDestDistanceRef"},
    {GROUP_GPS, 26, "GPSDestDistance"},
    {GROUP_GPS, 27, "GPSProcessingMethod"},
    {GROUP_GPS, 28, "GPSAreaInformation"},
    {GROUP_GPS, 29, "GPSDateStamp"},
    {GROUP_GPS, 30, "GPSDifferential"},
    {GROUP_GPS, 31, "GPSHPositioningError"},

    {GROUP_INTEROP, 1, "InteroperabilityIndex"},
    {GROUP_INTEROP, 2, "InteroperabilityVersion"},
    {GROUP_INTEROP, 4096, "RelatedImageFileFormat"},
    {GROUP_INTEROP, 4097, "RelatedImageWidth"},
    {GROUP_INTEROP, 4098, "RelatedImageLength"},
};

}  // namespace

const TagName *FindTagByName(const std::string &name)
{
    for (const TagName &tag : TAG_NAMES) {
        if (strcasecmp(tag.name, name.c_str()) == 0) return &tag;
    }
    return nullptr;
}

const char *NameOfTag(TagGroup group, uint32_t number)
{
    for (const TagName &tag : TAG_NAMES) {
        if (tag.group == group && tag.number == number) return tag.name;
    }
    return nullptr;
}

TagGroup GroupBelowPointer(uint32_t pointer)
{
    switch (pointer) {
    case TAG_EXIF_IFD: return GROUP_EXIF;
    case TAG_GPS_IFD: return GROUP_GPS;
    case TAG_INTEROP_IFD: return GROUP_INTEROP;
    default: return GROUP_TIFF;
    }
}

const TagName *AllTagNames(size_t *count)
{
    *count = sizeof TAG_NAMES / sizeof TAG_NAMES[0];
    return TAG_NAMES;
}
