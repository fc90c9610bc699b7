#include <gtest/gtest.h>

#include <algorithm>

#include "load/tiff_types.h"
#include "reader/tif_tag_list.h"
#include "support/fault_injection.h"
#include "support/samples.h"
#include "support/temp_dir.h"
#include "zexif.h"

namespace {

std::vector<std::string> SortedFiles(const std::string &dir)
{
    std::vector<std::string> names = ListFiles(dir);
    std::sort(names.begin(), names.end());
    return names;
}

std::string Describe(const FaultWindow &window, uint64_t failAt)
{
    return "call " + std::to_string(failAt) + " (" + window.Site() + ")";
}

std::string Extension(const std::string &path)
{
    return path.substr(path.find_last_of('.'));
}

// The edit every save of these tests makes before it writes.
void SetArtist(CExifDoc *doc)
{
    ExifTagValue artist = {2, 5, const_cast<char *>("Jane")};
    zExifSetTag(doc, 315, &artist, 0);
}

std::string Bytes(const void *data, size_t size)
{
    return data == nullptr ? "null" : std::string(static_cast<const char *>(data), size);
}

// What a reader tells of a file, one answer per question; "" where it gave
// none.
std::vector<std::string> ReaderAnswers(const std::string &path)
{
    CExifReader *reader = zRExifBeginRead(path.c_str());
    std::vector<std::string> answers;
    answers.push_back(std::to_string(zRExifGetFileFormat(reader)));
    for (uint32_t tag : {271u, 272u, 306u, 274u, 36867u, 33434u, 37500u}) {
        ExifTagValue value = {};
        int found = zRExifGetTag(reader, tag, &value);
        answers.push_back(found != 0 ? "" : Bytes(value.data, size_t(value.count) * TiffTypeSize(value.type)));
    }
    ExifBuffer thumbnail = {};
    answers.push_back(zRExifGetThumbnailData(reader, &thumbnail) != 0 ? "" : Bytes(thumbnail.data, thumbnail.size));
    ExifBuffer marker = {};
    answers.push_back(zRExifGetExifMarker(reader, &marker) != 0 ? "" : Bytes(marker.data, marker.size));
    delete[] marker.data;
    TifTagList *list = nullptr;
    answers.push_back(zRExifGetTIFExifData(reader, &list) != 0 ? "" : std::to_string(list ? list->count : 0));
    FreeTifTagList(list);
    answers.push_back(zRExifIsAudioExist(reader) ? "audio" : "");
    zRExifEndRead(reader);
    return answers;
}

class FaultOnSample : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override
    {
        m_path = m_dir.Copy(GetParam(), "photo" + Extension(GetParam()));
        m_original = ReadFileBytes(m_path);
        CExifDoc *doc = zExifLoadFile(m_path.c_str());
        ASSERT_NE(nullptr, doc);
        SetArtist(doc);
        std::string clean = m_dir.Path("clean");
        ASSERT_EQ(0, zExifSaveFile(doc, clean.c_str()));
        zExifDestroy(doc);
        m_saved = ReadFileBytes(clean);
        m_listing = SortedFiles(m_dir.m_path);
    }

    // After a failed save the file and its directory are as they were; after
    // one that got by, the file is what a save without failures writes.
    void ExpectNothingLost(int result, const std::string &call)
    {
        EXPECT_TRUE(ReadFileBytes(m_path) == (result == 0 ? m_saved : m_original)) << call << " spoilt the file";
        EXPECT_EQ(m_listing, SortedFiles(m_dir.m_path)) << call;
    }

    TempDir m_dir;
    std::string m_path;
    std::vector<uint8_t> m_original;
    std::vector<uint8_t> m_saved;
    std::vector<std::string> m_listing;
};

// Any open, read, seek or allocation of a load that fails gives null; only
// the standard library gets by without some of its allocations. The leak
// checkers see that nothing made before the failure stays.
TEST_P(FaultOnSample, LoadFailsWithNull)
{
    uint64_t failed = ForEachFailingCall([&](uint64_t failAt) {
        FaultWindow window(FAULT_ANY, failAt);
        CExifDoc *doc = zExifLoadFile(m_path.c_str());
        bool struck = window.Close();
        EXPECT_TRUE(struck ? doc == nullptr || window.Site() == std::string("allocation") : doc != nullptr)
            << Describe(window, failAt);
        zExifDestroy(doc);
        return struck && !HasFailure();
    });
    EXPECT_GT(failed, 0u);
}

// A reader whose open, reads or allocations fail answers fewer questions,
// never wrongly: what it still answers is what it answers without failures.
TEST_P(FaultOnSample, ReaderAnswersFewerButNeverWrong)
{
    const std::vector<std::string> clean = ReaderAnswers(m_path);
    uint64_t failed = ForEachFailingCall([&](uint64_t failAt) {
        FaultWindow window(FAULT_ANY, failAt);
        std::vector<std::string> answers = ReaderAnswers(m_path);
        bool struck = window.Close();
        for (size_t i = 0; i < answers.size(); i++) {
            if (answers[i] == "" || answers[i] == "0") continue;
            EXPECT_EQ(clean[i], answers[i]) << "question " << i << " after " << Describe(window, failAt);
        }
        return struck && !HasFailure();
    });
    EXPECT_GT(failed, 0u);
}

// A save in place that meets a failure anywhere (reading the source, making
// or writing the temporary file, syncing, renaming) reports it, and loses
// nothing either way.
TEST_P(FaultOnSample, InPlaceSaveLosesNothing)
{
    uint64_t failed = ForEachFailingCall([&](uint64_t failAt) {
        CExifDoc *doc = zExifLoadFile(m_path.c_str());
        if (doc == nullptr) {
            ADD_FAILURE() << "the sample doesn't load";
            return false;
        }
        SetArtist(doc);
        FaultWindow window(FAULT_ANY, failAt);
        int result = zExifSaveFile(doc, m_path.c_str());
        bool struck = window.Close();
        zExifDestroy(doc);
        if (!struck) {
            EXPECT_EQ(0, result);
            return false;
        }
        EXPECT_TRUE(result == -1 || window.Site() == std::string("allocation")) << Describe(window, failAt);
        ExpectNothingLost(result, Describe(window, failAt));
        if (result == 0) m_dir.Write(m_path.substr(m_dir.m_path.size() + 1), m_original);
        return !HasFailure();
    });
    EXPECT_GT(failed, 0u);
}

INSTANTIATE_TEST_SUITE_P(Samples, FaultOnSample, ::testing::ValuesIn(AllSamples()),
                         [](const auto &sample) { return SampleTestName(sample.param); });

}  // namespace
