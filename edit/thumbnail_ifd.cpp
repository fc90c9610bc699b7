#include <new>

#include "edit/thumbnail_edit.h"
#include "load/tiff_types.h"
#include "tree/document.h"
#include "tree/walk.h"

namespace {

constexpr int32_t TAG_THUMB_OFFSET = 513;

// 72 dots per inch, as the two 32-bit halves of a RATIONAL in host order.
constexpr uint32_t RESOLUTION_72_PER_1[2] = {72, 1};

struct FixedEntry {
    int32_t tag;
    uint32_t type;
    uint32_t value;
};

constexpr int32_t TAG_IMAGE_WIDTH = 256;
constexpr int32_t TAG_IMAGE_LENGTH = 257;

// The thumbnail's IFD in a TIFF file: a reduced image (254) of a size (256,
// 257), which TIFF readers require of every image; in both formats JPEG
// compressed (259), 72 dpi (282, 283, 296), and where its stream lies (513,
// 514), which the save fills in.
constexpr FixedEntry THUMB_IFD_ENTRIES[] = {
    {254, TIFF_LONG, 1},     {TAG_IMAGE_WIDTH, TIFF_LONG, 0}, {TAG_IMAGE_LENGTH, TIFF_LONG, 0},
    {259, TIFF_SHORT, 6},    {282, TIFF_RATIONAL, 0},         {283, TIFF_RATIONAL, 0},
    {296, TIFF_SHORT, 2},    {513, TIFF_LONG, 0},             {514, TIFF_LONG, 0},
};
constexpr int THUMB_IFD_SIZE = sizeof(THUMB_IFD_ENTRIES) / sizeof(THUMB_IFD_ENTRIES[0]);
// Where the tags of an Exif thumbnail's IFD begin among them.
constexpr int EXIF_THUMB_FIRST = 3;

constexpr FixedEntry IFD0_ENTRIES[] = {
    {282, TIFF_RATIONAL, 0},
    {283, TIFF_RATIONAL, 0},
    {296, TIFF_SHORT, 2},
};
constexpr int IFD0_SIZE = sizeof(IFD0_ENTRIES) / sizeof(IFD0_ENTRIES[0]);

// The entry count, the tags and the link.
constexpr int MAX_IFD_NODES = THUMB_IFD_SIZE + 2;

CTag *MakeEntry(const FixedEntry &entry)
{
    CTag *tag = new (std::nothrow) CTag();
    if (tag == nullptr) return nullptr;
    tag->m_id = entry.tag;
    tag->m_type = entry.type;
    tag->m_count = 1;
    tag->m_value = entry.value;
    if (entry.type == TIFF_RATIONAL && !tag->SetData(RESOLUTION_72_PER_1, sizeof(RESOLUTION_72_PER_1))) {
        delete tag;
        return nullptr;
    }
    return tag;
}

// The node at position i of an IFD's chain of count entries.
CNode *MakeChainNode(const FixedEntry *entries, int count, int i)
{
    if (i == 0) return NewStructuralNode(NODE_ENTRY_COUNT, KIND_IFD_CONTENT, static_cast<uint32_t>(count));
    if (i == count + 1) return NewStructuralNode(NODE_NEXT_IFD, KIND_PLAIN, 0);
    return MakeEntry(entries[i - 1]);
}

// Makes every node of the IFD's chain before any goes into the tree, so that a
// failed allocation leaves nothing behind. Returns the number of nodes, or 0.
int MakeIfdNodes(const FixedEntry *entries, int count, CNode **nodes)
{
    int total = count + 2;
    for (int i = 0; i < total; i++) {
        nodes[i] = MakeChainNode(entries, count, i);
        if (nodes[i] == nullptr) {
            for (int j = 0; j < i; j++) delete nodes[j];
            return 0;
        }
    }
    return total;
}

void LinkIfdNodes(CExifDoc *doc, CNode *ifd, CNode **nodes, int total)
{
    doc->MoveTo(ifd);
    doc->AddChild(nodes[0]);
    for (int i = 1; i < total; i++) doc->AddSibling(nodes[i]);
}

int BuildIfd(CExifDoc *doc, CNode *ifd, const FixedEntry *entries, int count)
{
    CNode *nodes[MAX_IFD_NODES];
    int total = MakeIfdNodes(entries, count, nodes);
    if (total == 0) return 0;
    LinkIfdNodes(doc, ifd, nodes, total);
    return 1;
}

}  // namespace

int BuildThumbIfd(CExifDoc *doc, CNode *node, const JpegFrameSize *frame)
{
    FixedEntry entries[THUMB_IFD_SIZE];
    int count = 0;
    for (int i = frame != nullptr ? 0 : EXIF_THUMB_FIRST; i < THUMB_IFD_SIZE; i++) {
        entries[count] = THUMB_IFD_ENTRIES[i];
        if (entries[count].tag == TAG_IMAGE_WIDTH) entries[count].value = frame->width;
        if (entries[count].tag == TAG_IMAGE_LENGTH) entries[count].value = frame->height;
        count++;
    }
    if (!BuildIfd(doc, node, entries, count)) return 0;
    doc->m_thumbTag = AsTag(FindInChain(node->m_child, TAG_THUMB_OFFSET));
    return 1;
}

int BuildIfd0(CExifDoc *doc, CNode *node)
{
    return BuildIfd(doc, node, IFD0_ENTRIES, IFD0_SIZE);
}

CNode *MakeEmptyIfd(uint32_t index)
{
    CNode *ifd = NewStructuralNode(NODE_IFD, KIND_PLAIN, index);
    if (ifd != nullptr) ifd->m_hasChild = 1;
    return ifd;
}

CNode *MakeTiffHeaderNode()
{
    return NewStructuralNode(NODE_TIFF_HEADER, KIND_IFD_CONTENT, 0);
}
