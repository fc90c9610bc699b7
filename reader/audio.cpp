#include <cstdio>
#include <cstring>
#include <new>

#include "edit/fpxr_format.h"
#include "platform/failure_reason.h"
#include "platform/path_open.h"
#include "reader/reader.h"
#include "streams/byte_order.h"
#include "streams/stream.h"
#include "zexif.h"

namespace {

// The payload of one recorded FPXR segment, as far as the file holds it.
struct AudioSegment {
    unsigned char *m_data = nullptr;
    int32_t m_size = 0;

    ~AudioSegment() { delete[] m_data; }
};

// 0 for an entry without payload or no memory: the walk stops there.
int LoadAudioSegment(CExifReader *reader, const ReaderSegment &entry, AudioSegment *segment)
{
    if (entry.size < 1) return 0;
    segment->m_data = new (std::nothrow) unsigned char[static_cast<uint32_t>(entry.size)];
    if (segment->m_data == nullptr) return 0;
    reader->m_file.Seek(0, entry.offset);
    segment->m_size = static_cast<int32_t>(reader->m_file.Read(segment->m_data, static_cast<uint32_t>(entry.size)));
    return 1;
}

int IsAudioHead(const AudioSegment &segment)
{
    if (segment.m_size < FPXR_HEAD_MIN_SIZE) return 0;
    const unsigned char *data = segment.m_data;
    return std::memcmp(data, "FPXR", 4) == 0 && data[FPXR_TYPE_OFFSET] == FPXR_AUDIO_TYPE &&
           std::memcmp(data + FPXR_RIFF_OFFSET, "RIFF", 4) == 0;
}

uint16_t SegmentIndex(const AudioSegment &segment)
{
    return ReadU16(segment.m_data + FPXR_INDEX_OFFSET, 1);
}

// A segment without a whole header has no index to trust.
int ContinuesStream(const AudioSegment &segment, uint16_t index)
{
    return segment.m_size >= FPXR_HEADER_SIZE && SegmentIndex(segment) == index;
}

// 0 when the bytes didn't all go out: a full disk, say.
int WriteFrom(FILE *out, const AudioSegment &segment, int32_t from)
{
    const size_t count = static_cast<size_t>(segment.m_size - from);
    return std::fwrite(segment.m_data + from, 1, count, out) == count;
}

// The RIFF file's length, read as a signed size: a size with its top bit set
// leaves nothing outstanding, and the stream ends at its head.
int64_t RiffLength(const AudioSegment &head)
{
    return int64_t(static_cast<int32_t>(ReadU32(head.m_data + FPXR_RIFF_SIZE_OFFSET, 0))) + RIFF_UNCOUNTED;
}

// The stream being written out: the file, its index and what is outstanding.
struct AudioOutput {
    FILE *m_file = nullptr;
    uint16_t m_index = FPXR_NO_INDEX;
    int64_t m_remaining = 0;
    int m_writeFailed = 0;
};

enum SegmentStep { STEP_PASSED, STEP_WRITTEN, STEP_STOP, STEP_FAILED };

// A second head while the output is open ends the walk: the first stream is
// the audio, and the second, whose index may well be the same, is not mixed
// into it.
SegmentStep WriteSegment(CExifReader *reader, const AudioSegment &segment, const void *path, AudioOutput *output)
{
    if (IsAudioHead(segment)) {
        if (output->m_file != nullptr) return STEP_STOP;
        output->m_file = OpenPath(path, "wb");
        if (output->m_file == nullptr) return STEP_FAILED;
        if (!WriteFrom(output->m_file, segment, FPXR_HEAD_PAYLOAD)) output->m_writeFailed = 1;
        output->m_index = SegmentIndex(segment);
        output->m_remaining = RiffLength(segment) - (segment.m_size - FPXR_HEAD_PAYLOAD);
        reader->m_hasAudio = 1;
        return STEP_WRITTEN;
    }
    if (output->m_file == nullptr || !ContinuesStream(segment, output->m_index)) return STEP_PASSED;
    if (!WriteFrom(output->m_file, segment, FPXR_HEADER_SIZE)) output->m_writeFailed = 1;
    output->m_remaining -= segment.m_size - FPXR_HEADER_SIZE;
    return STEP_WRITTEN;
}

}  // namespace

int zRExifIsAudioExist(CExifReader *reader)
{
    if (reader == nullptr) return RefuseNullHandle();
    for (int32_t i = 0; i < reader->m_fpxrCount; i++) {
        AudioSegment segment;
        if (!LoadAudioSegment(reader, reader->m_fpxrSegments[i], &segment)) break;
        if (IsAudioHead(segment)) {
            reader->m_hasAudio = 1;
            break;
        }
    }
    return reader->m_hasAudio;
}

// The file is made only when a head is met. A table that runs out before the
// RIFF length is reached leaves a short file, which still counts as written;
// one cut short by a failed read or write doesn't.
int zRExifGetAudioFile(CExifReader *reader, const void *path)
{
    BeginExport();
    if (reader == nullptr || path == nullptr) return FailExport(ZEXIF_ERROR_ARGUMENT);
    if (reader->m_fpxrCount < 1) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    AudioOutput output;
    for (int32_t i = 0; i < reader->m_fpxrCount; i++) {
        AudioSegment segment;
        if (!LoadAudioSegment(reader, reader->m_fpxrSegments[i], &segment)) break;
        SegmentStep step = WriteSegment(reader, segment, path, &output);
        if (step == STEP_FAILED) return FailExport(ZEXIF_ERROR_WRITE);
        if (step == STEP_STOP || (step == STEP_WRITTEN && output.m_remaining <= 0)) break;
    }
    if (output.m_file == nullptr) return FailExport(ZEXIF_ERROR_NOT_FOUND);
    const int closed = std::fclose(output.m_file) == 0;
    if (reader->m_file.HasFailed()) return FailExport(ZEXIF_ERROR_READ);
    return closed && !output.m_writeFailed ? 0 : FailExport(ZEXIF_ERROR_WRITE);
}
