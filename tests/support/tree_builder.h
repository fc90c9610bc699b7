#ifndef ZEXIF_TESTS_TREE_BUILDER_H
#define ZEXIF_TESTS_TREE_BUILDER_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "load/tiff_types.h"
#include "tree/document.h"
#include "zexif.h"

// One entry of a hand-made IFD: its value as a caller of zExifSetTag gives it
// (host order), and for a pointer tag the entries of its sub-IFD.
struct EntryDef {
    int32_t tag;
    uint32_t type;
    uint32_t count;
    std::vector<uint8_t> bytes;
    std::vector<EntryDef> sub;
};
using IfdDef = std::vector<EntryDef>;

EntryDef Short(int32_t tag, uint16_t value);
EntryDef Long(int32_t tag, uint32_t value);
EntryDef Ascii(int32_t tag, const std::string &text);  // with its NUL
EntryDef Rational(int32_t tag, uint32_t numerator, uint32_t denominator);
// The count is what the bytes hold of the type.
EntryDef Bytes(int32_t tag, uint32_t type, const std::vector<uint8_t> &bytes);
// 2-byte types take each number as a SHORT, the others as a LONG: a rational
// is two numbers.
EntryDef Numbers(int32_t tag, uint32_t type, const std::vector<uint32_t> &values);
EntryDef Pointer(int32_t tag, const IfdDef &sub);  // 34665, 34853: a LONG with a sub-IFD

// The value an EntryDef stands for, pointing into its bytes.
ExifTagValue ValueOf(const EntryDef &def);

// Records 34665 and 513 in the document as a load records them.
void RegisterLikeALoad(CExifDoc &doc, CTag *tag);

// Assembles a document node by node through the document's cursor, in the
// shapes a load makes, and registers 34665, 513 and Exif APP1 markers in the
// document as a load does. Values are stored as the parser stores them.
class TreeBuilder {
public:
    explicit TreeBuilder(int32_t format);

    // A top-level marker; APPn markers get the signature (4 bytes or fewer).
    TreeBuilder &Marker(int32_t code, const std::string &signature = "");
    // An APP1 "Exif" with a TIFF header and these IFDs below it.
    TreeBuilder &ExifApp1(const std::vector<IfdDef> &ifds);
    // The whole tree of a TIFF file: a header and these IFDs at the top level.
    TreeBuilder &TiffBlock(const std::vector<IfdDef> &ifds);
    std::unique_ptr<CExifDoc> Take();

    std::unique_ptr<CExifDoc> m_doc;

private:
    void AddIfds(const std::vector<IfdDef> &ifds);
    void AddEntries(const IfdDef &entries);
};

// A JPEG document: SOI, APP0, an Exif APP1 with these IFDs (none when the
// list is empty), DQT, SOS, scan data, EOI.
std::unique_ptr<CExifDoc> JpegDoc(const std::vector<IfdDef> &ifds);
std::unique_ptr<CExifDoc> TiffDoc(const std::vector<IfdDef> &ifds);

#endif
