#ifndef ZEXIF_TESTS_TREE_CHECK_H
#define ZEXIF_TESTS_TREE_CHECK_H

#include <string>

#include "tree/document.h"

// What is wrong with a document's tree, or "" when nothing is:
// - every IFD and sub-IFD chain begins with an entry count that equals the
//   number of CTags in the chain;
// - every node's m_parent is the node whose chain holds it;
// - m_exifMarker, m_exifIfdTag, m_thumbTag and the cursor are null or nodes
//   of the tree;
// - with sorted, the CTags of every chain stand in ascending order.
std::string TreeFaults(const CExifDoc &doc, bool sorted);

// What is wrong with the document's shortcuts and flags, or "": the Exif
// IFD's and the thumbnail's shortcuts stand on tags 34665 and 513, and
// without a thumbnail tag no flag says there is one.
std::string ShortcutFaults(const CExifDoc &doc);

// The tree as text: each node's id, ":value" for IFD and count nodes, the
// signature of APPn markers, children in brackets. A tag numbered 2 or 3
// shows as a plain number.
std::string Outline(const CExifDoc &doc);

// The whole tree as text, each tag with its type, count, m_value and m_size:
// two dumps differ when a call changed the tree.
std::string TreeDump(const CExifDoc &doc);

#endif
