#ifndef ZEXIF_STREAMS_BYTE_ORDER_H
#define ZEXIF_STREAMS_BYTE_ORDER_H

#include <cstdint>
#include <cstring>

// Fields are read raw and swapped in place when the data is big-endian; the
// library runs on little-endian machines only.
inline void Swap16(void *p)
{
    unsigned char *b = static_cast<unsigned char *>(p);
    unsigned char t = b[0];
    b[0] = b[1];
    b[1] = t;
}

inline void Swap32(void *p)
{
    unsigned char *b = static_cast<unsigned char *>(p);
    unsigned char t = b[0];
    b[0] = b[3];
    b[3] = t;
    t = b[1];
    b[1] = b[2];
    b[2] = t;
}

inline uint16_t ReadU16(const unsigned char *p, int bigEndian)
{
    return bigEndian ? uint16_t((p[0] << 8) | p[1]) : uint16_t(p[0] | (p[1] << 8));
}

inline uint32_t ReadU32(const unsigned char *p, int bigEndian)
{
    return bigEndian ? (uint32_t(p[0]) << 24) | (uint32_t(p[1]) << 16) | (uint32_t(p[2]) << 8) | p[3]
                     : uint32_t(p[0]) | (uint32_t(p[1]) << 8) | (uint32_t(p[2]) << 16) | (uint32_t(p[3]) << 24);
}

inline void WriteU16BE(unsigned char *p, uint16_t v)
{
    p[0] = uint8_t(v >> 8);
    p[1] = uint8_t(v);
}

#endif
