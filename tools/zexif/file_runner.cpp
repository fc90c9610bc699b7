#include "zexif/file_runner.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <thread>

#include "zexif/arguments.h"
#include "zexif/command.h"
#include "zexif/output.h"

namespace {

constexpr unsigned MAX_JOBS = 1024;

bool StartsAsImage(const std::filesystem::path &path)
{
    unsigned char head[4] = {};
    FILE *file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) return false;
    const size_t size = std::fread(head, 1, sizeof head, file);
    std::fclose(file);
    if (size < 4) return false;
    return (head[0] == 0xFF && head[1] == 0xD8) || std::memcmp(head, "II*\0", 4) == 0 || std::memcmp(head, "MM\0*", 4) == 0;
}

void AddFolder(const std::string &folder, std::vector<std::string> *files)
{
    std::vector<std::string> found;
    std::error_code error;
    const auto walkOptions = std::filesystem::directory_options::skip_permission_denied;
    for (auto it = std::filesystem::recursive_directory_iterator(folder, walkOptions, error);
         it != std::filesystem::recursive_directory_iterator(); it.increment(error)) {
        if (it->is_regular_file(error) && StartsAsImage(it->path())) found.push_back(it->path().string());
    }
    std::sort(found.begin(), found.end());
    files->insert(files->end(), found.begin(), found.end());
}

struct FileResult {
    std::string out, err;
    int status = EXIT_OK;
    bool done = false;
};

class OrderedRun {
public:
    OrderedRun(size_t count, const std::function<int(const std::string &)> &work, const std::vector<std::string> &files)
        : m_results(count), m_work(work), m_files(files) {}

    void Work()
    {
        for (size_t i; (i = m_next++) < m_results.size();) {
            FileResult result;
            CapturedOutput captured;
            result.status = m_work(m_files[i]);
            captured.Release(&result.out, &result.err);
            result.done = true;
            std::lock_guard<std::mutex> lock(m_mutex);
            m_results[i] = std::move(result);
            m_ready.notify_all();
        }
    }

    // Waits for file i, and hands its result over.
    FileResult Take(size_t i)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_ready.wait(lock, [&] { return m_results[i].done; });
        return std::move(m_results[i]);
    }

private:
    std::vector<FileResult> m_results;
    const std::function<int(const std::string &)> &m_work;
    const std::vector<std::string> &m_files;
    std::atomic<size_t> m_next{0};
    std::mutex m_mutex;
    std::condition_variable m_ready;
};

}  // namespace

std::vector<std::string> ExpandFiles(const std::vector<std::string> &arguments, bool recursive)
{
    std::vector<std::string> files;
    for (const std::string &argument : arguments) {
        std::error_code error;
        if (recursive && std::filesystem::is_directory(argument, error)) {
            AddFolder(argument, &files);
        } else {
            files.push_back(argument);
        }
    }
    return files;
}

unsigned JobsOf(const ParsedArguments &parsed)
{
    if (!parsed.Has("jobs")) {
        const long cores = sysconf(_SC_NPROCESSORS_ONLN);
        return cores > 0 ? static_cast<unsigned>(std::min<long>(cores, MAX_JOBS)) : 1;
    }
    uint32_t jobs = 0;
    const std::string text = parsed.Value("jobs", "");
    if (ParseNumber(text, &jobs) && jobs >= 1 && jobs <= MAX_JOBS) return jobs;
    std::fprintf(stderr, "zexif: -j takes a number of threads from 1 to %u, not '%s'\n", MAX_JOBS, text.c_str());
    return 0;
}

int RunForEachFile(const ParsedArguments &parsed, const std::vector<std::string> &arguments, const Listing &listing,
                   const std::function<int(const std::string &path)> &work)
{
    const unsigned jobs = JobsOf(parsed);
    if (jobs == 0) return EXIT_USAGE;
    return RunOverFiles(ExpandFiles(arguments, parsed.Has("recursive")), jobs, listing, work);
}

int RunOverFiles(const std::vector<std::string> &files, unsigned threads, const Listing &listing,
                 const std::function<int(const std::string &path)> &work)
{
    OrderedRun run(files.size(), work, files);
    std::vector<std::thread> workers;
    for (unsigned i = 0; i < std::max(1u, std::min<unsigned>(threads, static_cast<unsigned>(files.size()))); ++i) {
        workers.emplace_back([&run] { run.Work(); });
    }
    int status = EXIT_OK;
    bool said = false;
    std::fputs(listing.open.c_str(), stdout);
    for (size_t i = 0; i < files.size(); ++i) {
        const FileResult result = run.Take(i);
        if (!result.out.empty() && said) std::fputs(listing.between.c_str(), stdout);
        said = said || !result.out.empty();
        std::fwrite(result.out.data(), 1, result.out.size(), stdout);
        // A file's complaint comes after what it printed, not ahead of it.
        if (!result.err.empty()) std::fflush(stdout);
        std::fwrite(result.err.data(), 1, result.err.size(), stderr);
        status = std::max(status, result.status);
    }
    for (std::thread &worker : workers) worker.join();
    std::fputs(listing.close.c_str(), stdout);
    return status;
}
