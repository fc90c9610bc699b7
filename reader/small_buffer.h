#ifndef ZEXIF_READER_SMALL_BUFFER_H
#define ZEXIF_READER_SMALL_BUFFER_H

#include <cstdint>
#include <new>

// Room for bytes that a scan needs while it runs: up to N in the object
// itself, as most IFDs and values are small, and more in a new[] buffer that
// goes with the object.
template <uint32_t N>
class SmallBuffer {
public:
    SmallBuffer() = default;
    ~SmallBuffer() { delete[] m_allocated; }
    SmallBuffer(const SmallBuffer &) = delete;
    SmallBuffer &operator=(const SmallBuffer &) = delete;

    // Room for size bytes, uncleared, until the next call or the object's
    // end; null when there is no memory.
    unsigned char *Reserve(uint32_t size)
    {
        delete[] m_allocated;
        m_allocated = nullptr;
        if (size <= N) return m_inPlace;
        m_allocated = new (std::nothrow) unsigned char[size];
        return m_allocated;
    }

private:
    unsigned char *m_allocated = nullptr;
    unsigned char m_inPlace[N];
};

#endif
