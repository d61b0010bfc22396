// Loads, saves and catalogue walks at N = 1,000, 10,000 and 100,000 machines, each timed with
// Google Benchmark (medians of repetitions) and set against a reference pass that reads the
// same file in 128 KiB chunks and splits it into lines with memchr; and "qzrbank check" of a
// legacy bank of a million rows against the library's load of the same file. Peak memory and
// a load from a file out of the page cache are measured once per case in a child process of
// its own (see MemoryProbe). At the end one table gives every result.
//
//   qzr_bench [--sizes=1000,10000,100000] [--check-rows=1000000] [--data=DIR]
//             [--repetitions=5] [--min-time=0.3] [--no-memory] [benchmark flags]
#include <fcntl.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <new>
#include <regex>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <QZRMachine/QZRMachine.h>

#include "BankGenerator.h"
#if defined(QZR_BENCH_WITH_CHECK)
#include <fstream>
#include <sstream>

#include "Commands.h"
#endif

// -------------------------------------------------------------------------------------------
// Heap accounting: every operator new/delete of the process (the library's included, since the
// executable's replacements take precedence over the C++ runtime's) keeps a count of the bytes
// in use and their high-water mark. Only the memory probes read them.

namespace {
// Counting is switched on only in the children of the memory probes, so that it costs the
// timed runs nothing but a test of this flag.
bool g_counting = false;
long long g_liveBytes = 0;
long long g_peakBytes = 0;

void* CountedAllocate(std::size_t size) {
    void* p = std::malloc(size == 0 ? 1 : size);
    if (p == nullptr) {
        throw std::bad_alloc();
    }
    if (g_counting) {
        g_liveBytes += static_cast<long long>(malloc_usable_size(p));
        g_peakBytes = std::max(g_peakBytes, g_liveBytes);
    }
    return p;
}

void CountedFree(void* p) {
    if (p != nullptr) {
        if (g_counting) {
            g_liveBytes -= static_cast<long long>(malloc_usable_size(p));
        }
        std::free(p);
    }
}
}  // namespace

void* operator new(std::size_t size) {
    return CountedAllocate(size);
}
void* operator new[](std::size_t size) {
    return CountedAllocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return CountedAllocate(size);
    } catch (...) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return CountedAllocate(size);
    } catch (...) {
        return nullptr;
    }
}
void operator delete(void* p) noexcept {
    CountedFree(p);
}
void operator delete[](void* p) noexcept {
    CountedFree(p);
}
void operator delete(void* p, std::size_t) noexcept {
    CountedFree(p);
}
void operator delete[](void* p, std::size_t) noexcept {
    CountedFree(p);
}

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// The CPU time of the calling thread, user and system (the system's share is the reading and
// writing of the files and the page faults of new memory): the machine is shared, and CPU time
// keeps other processes' load out of the results far better than wall time.
double ThreadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

constexpr double kMiB = 1024.0 * 1024.0;
// Sections beyond this number are never read from one sectioned bank file.
constexpr std::size_t kMaxSectionsPerFile = 65535;
// A system-bank folder holds its machines in this many files.
constexpr std::size_t kSystemBankFiles = 10;
const char kCreateDate[] = "Mon Jan  6 08:00:00 2025\n";

struct Options {
    std::vector<std::size_t> sizes{1000, 10000, 100000};
    std::size_t checkRows = 1000000;  // rows of the legacy bank that "qzrbank check" reads
    std::string dataDir;
    int repetitions = 5;
    double minTime = 0.3;
    bool memory = true;
    std::string filter;  // --benchmark_filter, to probe the memory of the chosen cases only
    // --probe=<case>:<N>:<descriptor>: this process is a memory probe (see MemoryProbe).
    bool probe = false;
    std::size_t probeCase = 0;
    std::size_t probeSize = 0;
    int probeOut = -1;
};

// -------------------------------------------------------------------------------------------
// The files of one size.

struct SizeData {
    std::size_t n = 0;
    bool standard = true;  // a size of --sizes: every case runs at it
    bool check = false;    // the size of --check-rows: the check and its comparisons run at it
    fs::path dir;
    std::string sectionedUser;  // User-IMM.bnk
    std::string systemPattern;  // Machine/IMM/*.bnk
    std::vector<std::string> systemFiles;
    std::string legacyUser;        // Bank/user-pro.bnk
    std::string saveSectioned;     // out/User-IMM.bnk
    std::string saveLegacyFolder;  // out/ (the writer adds Bank\user-pro.bnk)
    std::string saveLegacyFile;
};

uint64_t FileBytes(const std::string& path) {
    std::error_code error;
    const uintmax_t size = fs::file_size(path, error);
    return error ? 0 : static_cast<uint64_t>(size);
}

uint64_t FilesBytes(const std::vector<std::string>& paths) {
    uint64_t total = 0;
    for (const std::string& path : paths) {
        total += FileBytes(path);
    }
    return total;
}

void Require(bool ok, const std::string& what) {
    if (!ok) {
        std::fprintf(stderr, "qzr_bench: %s\n", what.c_str());
        std::exit(2);
    }
}

// The files of the cases that run at this size are made: a size for the check alone has only
// the legacy bank.
SizeData PrepareSize(const fs::path& root, std::size_t n, bool standard, bool check) {
    SizeData data;
    data.n = n;
    data.standard = standard;
    data.check = check;
    data.dir = root / std::to_string(n);
    fs::create_directories(data.dir / "Machine" / "IMM");
    fs::create_directories(data.dir / "Bank");
    fs::create_directories(data.dir / "out" / "Bank");
    data.sectionedUser = (data.dir / "User-IMM.bnk").string();
    data.legacyUser = (data.dir / "Bank" / "user-pro.bnk").string();
    data.systemPattern = (data.dir / "Machine" / "IMM" / "*.bnk").string();
    data.saveSectioned = (data.dir / "out" / "User-IMM.bnk").string();
    data.saveLegacyFolder = (data.dir / "out").string() + "/";
    data.saveLegacyFile = (data.dir / "out" / "Bank" / "user-pro.bnk").string();

    // Files are made once and kept: the generator is deterministic, so a file of the right
    // name and a size above zero is the same file.
    auto make = [](const std::string& path, const std::function<std::string()>& text) {
        if (FileBytes(path) == 0) {
            Require(qzr::bench::WriteBankFile(path, text()), "cannot write " + path);
        }
    };
    make(data.legacyUser, [n] { return qzr::bench::LegacyUserBankText(0, n); });
    if (!standard) {
        return data;
    }
    make(data.sectionedUser,
         [n] { return qzr::bench::SectionedIMMBankText(1, 0, n, kCreateDate); });
    const std::size_t perFile = (n + kSystemBankFiles - 1) / kSystemBankFiles;
    for (std::size_t file = 0; file < kSystemBankFiles; ++file) {
        const std::size_t first = file * perFile;
        const std::size_t count = first >= n ? 0 : std::min(perFile, n - first);
        char name[32];
        std::snprintf(name, sizeof(name), "part-%02zu.bnk", file + 1);
        const std::string path = (data.dir / "Machine" / "IMM" / name).string();
        make(path, [first, count] {
            return qzr::bench::SectionedIMMBankText(0, first, count, kCreateDate);
        });
        data.systemFiles.push_back(path);
    }
    return data;
}

// -------------------------------------------------------------------------------------------
// The reference pass: the file in 128 KiB chunks, its lines found with memchr.

std::size_t ReferencePass(const std::string& path) {
    static std::vector<char> chunk(128 * 1024);
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return 0;
    }
    std::size_t lines = 0;
    for (;;) {
        const ssize_t got = ::read(fd, chunk.data(), chunk.size());
        if (got <= 0) {
            break;
        }
        const char* p = chunk.data();
        const char* const end = p + got;
        while (const void* lineFeed = std::memchr(p, '\n', static_cast<std::size_t>(end - p))) {
            ++lines;
            p = static_cast<const char*>(lineFeed) + 1;
        }
    }
    ::close(fd);
    return lines;
}

// -------------------------------------------------------------------------------------------
// The cases. Each has a setup (not timed), the operation (timed), and what it handled.

struct Work {
    uint64_t bytes = 0;     // bytes of the bank file(s) read or written
    uint64_t machines = 0;  // machines loaded, saved or visited
};

struct CaseState {
    std::unique_ptr<CQZRMoldingMachineCtrl> catalogue;
    CQZRMoldingMachineIO io;
};

// The sizes a case runs at.
enum class Sizes { kStandard, kCheck, kBoth };

using Inputs = std::function<std::vector<std::string>(const SizeData&)>;
const Inputs kReadsNoFile;

struct Case {
    std::string name;           // e.g. "load sectioned user"
    std::string referenceName;  // the case this one is compared with (a reference pass)
    bool isReference = false;
    // Makes the state the operation starts from.
    std::function<void(const SizeData&, CaseState&)> setup;
    // Runs the operation once.
    std::function<Work(const SizeData&, CaseState&)> run;
    // The files the operation reads, which the cold run first drops from the page cache.
    Inputs inputs;
    Sizes sizes = Sizes::kStandard;

    bool RunsAt(const SizeData& data) const {
        return sizes == Sizes::kBoth || (sizes == Sizes::kStandard ? data.standard : data.check);
    }
};

void FreshCatalogue(const SizeData&, CaseState& state) {
    state.catalogue = std::make_unique<CQZRMoldingMachineCtrl>();
}

void SectionedCatalogue(const SizeData& data, CaseState& state) {
    state.catalogue = std::make_unique<CQZRMoldingMachineCtrl>();
    qzr::bench::FillSectionedIMMUserCatalogue(data.n, *state.catalogue);
    std::remove(data.saveSectioned.c_str());
}

void LegacyCatalogue(const SizeData& data, CaseState& state) {
    state.catalogue = std::make_unique<CQZRMoldingMachineCtrl>();
    qzr::bench::FillLegacyUserCatalogue(data.n, *state.catalogue);
    std::remove(data.saveLegacyFile.c_str());
}

uint64_t Loaded(const CaseState& state) {
    return static_cast<uint64_t>(state.catalogue->GetTotalMachine());
}

std::vector<std::string> LegacyInput(const SizeData& data) {
    return {data.legacyUser};
}

Work ReferenceOf(const std::vector<std::string>& paths) {
    Work work;
    for (const std::string& path : paths) {
        const std::size_t lines = ReferencePass(path);
        benchmark::DoNotOptimize(lines);
        work.bytes += FileBytes(path);
    }
    return work;
}

std::vector<Case> Cases() {
    std::vector<Case> cases;
    auto noSetup = [](const SizeData&, CaseState&) {};
    cases.push_back({"reference: sectioned user file", "", true, noSetup,
                     [](const SizeData& d, CaseState&) { return ReferenceOf({d.sectionedUser}); },
                     kReadsNoFile, Sizes::kStandard});
    cases.push_back({"reference: system folder files", "", true, noSetup,
                     [](const SizeData& d, CaseState&) { return ReferenceOf(d.systemFiles); },
                     kReadsNoFile, Sizes::kStandard});
    cases.push_back({"reference: legacy user file", "", true, noSetup,
                     [](const SizeData& d, CaseState&) { return ReferenceOf({d.legacyUser}); },
                     LegacyInput, Sizes::kBoth});
    cases.push_back(
        {"load sectioned user bank", "reference: sectioned user file", false, FreshCatalogue,
         [](const SizeData& d, CaseState& s) {
             Require(s.io.LoadIMMUserDatabase(d.sectionedUser.c_str(), s.catalogue.get()),
                     "sectioned user load failed");
             return Work{FileBytes(d.sectionedUser), Loaded(s)};
         },
         [](const SizeData& d) { return std::vector<std::string>{d.sectionedUser}; },
         Sizes::kStandard});
    cases.push_back(
        {"load sectioned system folder", "reference: system folder files", false, FreshCatalogue,
         [](const SizeData& d, CaseState& s) {
             Require(s.io.LoadIMMSystemDatabase(d.systemPattern.c_str(), s.catalogue.get()),
                     "system folder load failed");
             return Work{FilesBytes(d.systemFiles), Loaded(s)};
         },
         [](const SizeData& d) { return d.systemFiles; }, Sizes::kStandard});
    cases.push_back({"load legacy user bank", "reference: legacy user file", false, FreshCatalogue,
                     [](const SizeData& d, CaseState& s) {
                         Require(
                             s.io.LoadOldIMMUserDatabase(d.legacyUser.c_str(), s.catalogue.get()),
                             "legacy user load failed");
                         return Work{FileBytes(d.legacyUser), Loaded(s)};
                     },
                     LegacyInput, Sizes::kBoth});
#if defined(QZR_BENCH_WITH_CHECK)
    cases.push_back({"qzrbank check legacy user bank", "load legacy user bank", false, noSetup,
                     [](const SizeData& d, CaseState&) {
                         // The command as the tool's main runs it, its report written to a
                         // file as standard output would take it.
                         qzrbank::CheckOptions options;
                         options.targets = {d.legacyUser};
                         std::istringstream in;
                         std::ofstream out(d.dir / "out" / "check-report.txt", std::ios::binary);
                         std::ostringstream err;
                         const int code = qzrbank::RunCheck(options, in, out, err);
                         Require(code == qzrbank::kExitOk || code == qzrbank::kExitNegative,
                                 "qzrbank check failed: " + err.str());
                         return Work{FileBytes(d.legacyUser), d.n};
                     },
                     LegacyInput, Sizes::kCheck});
#endif
    cases.push_back(
        {"save sectioned user bank", "reference: sectioned user file", false, SectionedCatalogue,
         [](const SizeData& d, CaseState& s) {
             Require(s.io.SaveIMMUserDatabase(d.saveSectioned.c_str(), s.catalogue.get()),
                     "sectioned save failed");
             return Work{FileBytes(d.saveSectioned), Loaded(s)};
         },
         kReadsNoFile, Sizes::kStandard});
    cases.push_back(
        {"save legacy user bank", "reference: legacy user file", false, LegacyCatalogue,
         [](const SizeData& d, CaseState& s) {
             Require(s.io.SaveOldIMMUserDatabase(d.saveLegacyFolder.c_str(), s.catalogue.get()),
                     "legacy save failed");
             return Work{FileBytes(d.saveLegacyFile), Loaded(s)};
         },
         kReadsNoFile, Sizes::kStandard});
    cases.push_back({"walk by global index", "", false, SectionedCatalogue,
                     [](const SizeData&, CaseState& s) {
                         CQZRIM machine;
                         const int total = s.catalogue->GetTotalMachine();
                         uint64_t got = 0;
                         for (int index = 0; index < total; ++index) {
                             got += s.catalogue->GetCurrentMachine(index, machine) ? 1 : 0;
                         }
                         return Work{0, got};
                     },
                     kReadsNoFile, Sizes::kStandard});
    cases.push_back({"name check (whole catalogue)", "", false, SectionedCatalogue,
                     [](const SizeData&, CaseState& s) {
                         // A name no machine has: the check walks every machine.
                         const bool found =
                             s.catalogue->IsMachineNameExist("Nobody Makes - This 0");
                         Require(!found, "name check found a name nobody has");
                         return Work{0, Loaded(s)};
                     },
                     kReadsNoFile, Sizes::kStandard});
    return cases;
}

// Saves need a target that does not exist yet, so that every save is a first save (a save over
// an existing bank first copies it to its ".bak"); loads need an empty catalogue.
// The catalogue of the previous load is destroyed here, outside the timing: a timed load
// starts as a load into a new catalogue of a running host does, its heap holding the blocks
// the previous catalogue freed. (The memory probe's single run in a fresh process gives the
// cold figure, every page of the new catalogue first touched.)
void ResetBetweenRuns(const Case& c, const SizeData& data, CaseState& state) {
    if (c.name.rfind("load", 0) == 0) {
        state.catalogue.reset();
        state.catalogue = std::make_unique<CQZRMoldingMachineCtrl>();
    } else if (c.name == "save sectioned user bank") {
        std::remove(data.saveSectioned.c_str());
    } else if (c.name == "save legacy user bank") {
        std::remove(data.saveLegacyFile.c_str());
    }
}

// -------------------------------------------------------------------------------------------
// Memory: each case runs once in a fresh process of its own (this program started again with
// --probe). It sets the case up, then notes the heap in use and resets the kernel's RSS
// high-water mark (/proc/self/clear_refs), runs the operation, and reports the heap's
// high-water mark above that start (operator new accounting), what stays in use afterwards
// (the catalogue a load made), the growth of VmHWM over VmRSS at the start, and the CPU time
// of that one cold run.

struct MemoryResult {
    bool valid = false;
    double peakHeap = 0;      // bytes above the start, at the highest point
    double retainedHeap = 0;  // bytes above the start, after the operation
    double rssGrowth = 0;     // VmHWM after the operation minus VmRSS before it
    // CPU and wall time of this one run, in a process that ran nothing before, its input files
    // (if any) first dropped from the page cache.
    double coldSeconds = 0;
    double coldWallSeconds = 0;
    bool readsFiles = false;  // the operation has input files
    bool evicted = false;     // and all of them were dropped from the page cache
};

long long StatusKiB(const char* field) {
    FILE* status = std::fopen("/proc/self/status", "r");
    if (status == nullptr) {
        return -1;
    }
    char line[256];
    long long value = -1;
    const std::size_t length = std::strlen(field);
    while (std::fgets(line, sizeof(line), status) != nullptr) {
        if (std::strncmp(line, field, length) == 0 && line[length] == ':') {
            value = std::atoll(line + length + 1);
            break;
        }
    }
    std::fclose(status);
    return value;
}

void ResetRssHighWater() {
    const int fd = ::open("/proc/self/clear_refs", O_WRONLY | O_CLOEXEC);
    if (fd >= 0) {
        const ssize_t ignored = ::write(fd, "5", 1);
        (void)ignored;
        ::close(fd);
    }
}

// Drops a file's pages from the page cache, so that the next read comes from the disk: written
// back first (fsync: dirty pages are not dropped), then advised away. False where the system
// has no such advice or does not take it.
bool DropFromPageCache(const std::string& path) {
#if defined(POSIX_FADV_DONTNEED)
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    const bool dropped = ::fsync(fd) == 0 && ::posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED) == 0;
    ::close(fd);
    return dropped;
#else
    static_cast<void>(path);
    return false;
#endif
}

// Runs in a process started for this one case (see MemoryProbe): sets the case up, measures
// one run, and writes the figures to the given descriptor.
void RunProbe(const Case& c, const SizeData& data, int out) {
    CaseState state;
    c.setup(data, state);
    ResetBetweenRuns(c, data, state);
    MemoryResult measured;
    measured.readsFiles = static_cast<bool>(c.inputs);
    measured.evicted = measured.readsFiles;
    if (c.inputs) {
        for (const std::string& path : c.inputs(data)) {
            measured.evicted = DropFromPageCache(path) && measured.evicted;
        }
    }
    // Only what is allocated from here on is counted, and freeing it counts back.
    g_counting = true;
    const long long startHeap = g_liveBytes;
    g_peakBytes = startHeap;
    ResetRssHighWater();
    const long long startRss = StatusKiB("VmRSS");
    const Clock::time_point start = Clock::now();
    const double cpuStart = ThreadSeconds();
    c.run(data, state);
    const double cpuEnd = ThreadSeconds();
    const Clock::time_point end = Clock::now();
    measured.valid = true;
    measured.coldSeconds = cpuEnd - cpuStart;
    measured.coldWallSeconds = std::chrono::duration<double>(end - start).count();
    measured.peakHeap = static_cast<double>(g_peakBytes - startHeap);
    measured.retainedHeap = static_cast<double>(g_liveBytes - startHeap);
    measured.rssGrowth = static_cast<double>(StatusKiB("VmHWM") - startRss) * 1024.0;
    const ssize_t ignored = ::write(out, &measured, sizeof(measured));
    (void)ignored;
}

// Starts this program again (a fresh process: nothing allocated or touched before) for one
// case and size, and reads back what it measured.
MemoryResult MemoryProbe(std::size_t caseIndex, const SizeData& data, const Options& options) {
    int pipeFds[2];
    MemoryResult result;
    if (::pipe(pipeFds) != 0) {
        return result;
    }
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(pipeFds[0]);
        const std::string probe = "--probe=" + std::to_string(caseIndex) + ":" +
                                  std::to_string(data.n) + ":" + std::to_string(pipeFds[1]);
        const std::string dataDir = "--data=" + options.dataDir;
        ::execl("/proc/self/exe", "qzr_bench", probe.c_str(), dataDir.c_str(),
                static_cast<char*>(nullptr));
        ::_exit(127);
    }
    ::close(pipeFds[1]);
    if (child > 0) {
        if (::read(pipeFds[0], &result, sizeof(result)) != static_cast<ssize_t>(sizeof(result))) {
            result = MemoryResult();
        }
        int status = 0;
        ::waitpid(child, &status, 0);
    }
    ::close(pipeFds[0]);
    return result;
}

// -------------------------------------------------------------------------------------------
// Timing.

struct Timed {
    double seconds = 0;      // median CPU time per operation
    double wallSeconds = 0;  // median wall time per operation
    Work work;
    MemoryResult memory;
};

std::map<std::string, Timed> g_results;  // by benchmark name

std::string BenchmarkName(const Case& c, std::size_t n) {
    std::string name = c.name;
    for (char& ch : name) {
        if (ch == ' ' || ch == ':' || ch == '(' || ch == ')') {
            ch = '_';
        }
    }
    return name + "/" + std::to_string(n);
}

class MedianCollector : public benchmark::ConsoleReporter {
  public:
    MedianCollector() : ConsoleReporter(::isatty(STDOUT_FILENO) ? OO_Defaults : OO_Tabular) {}
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") {
                double seconds = run.GetAdjustedRealTime();
                switch (run.time_unit) {
                    case benchmark::kNanosecond:
                        seconds *= 1e-9;
                        break;
                    case benchmark::kMicrosecond:
                        seconds *= 1e-6;
                        break;
                    case benchmark::kMillisecond:
                        seconds *= 1e-3;
                        break;
                    case benchmark::kSecond:
                        break;
                }
                Timed& timed = g_results[run.run_name.function_name];
                timed.seconds = seconds;
                const auto wall = run.counters.find("wall_ms");
                timed.wallSeconds = wall != run.counters.end() ? wall->second.value * 1e-3 : 0;
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

void RegisterCase(const Case& c, const SizeData& data, const Options& options) {
    const std::string name = BenchmarkName(c, data.n);
    benchmark::RegisterBenchmark(
        name.c_str(),
        [c, &data, name](benchmark::State& st) {
            CaseState state;
            c.setup(data, state);
            Work work;
            double wallSeconds = 0;
            for (auto _ : st) {
                ResetBetweenRuns(c, data, state);
                const Clock::time_point start = Clock::now();
                const double cpuStart = ThreadSeconds();
                work = c.run(data, state);
                const double cpuEnd = ThreadSeconds();
                const Clock::time_point end = Clock::now();
                st.SetIterationTime(cpuEnd - cpuStart);
                wallSeconds += std::chrono::duration<double>(end - start).count();
            }
            g_results[name].work = work;
            st.counters["machines"] = static_cast<double>(work.machines);
            st.counters["wall_ms"] = 1e3 * wallSeconds / static_cast<double>(st.iterations());
        })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(options.repetitions)
        ->ReportAggregatesOnly(true)
        ->ComputeStatistics("min",
                            [](const std::vector<double>& values) {
                                return *std::min_element(values.begin(), values.end());
                            })
        ->MinTime(options.minTime);
}

// -------------------------------------------------------------------------------------------
// The table.

std::string Fixed(double value, int decimals) {
    char text[64];
    std::snprintf(text, sizeof(text), "%.*f", decimals, value);
    return text;
}

std::string Rate(double perSecond) {
    if (perSecond <= 0) {
        return "-";
    }
    if (perSecond >= 1e6) {
        return Fixed(perSecond / 1e6, 2) + "M";
    }
    return Fixed(perSecond / 1e3, 1) + "k";
}

// What each case must reach, as text and as a check on its results; no text where no target
// is set.
struct Target {
    const char* text;
    std::function<bool(const Timed& timed, double ratio)> holds;
};

std::function<bool(const Timed&, double)> RatioAtMost(double most) {
    return [most](const Timed&, double ratio) { return ratio > 0 && ratio <= most; };
}

Target TargetOf(const std::string& caseName, std::size_t n) {
    if (caseName.rfind("load sectioned", 0) == 0) {
        return {"<= 8x ref", RatioAtMost(8.0)};
    }
    if (caseName == "load legacy user bank") {
        if (n != 10000 && n != 100000) {
            return {"", nullptr};
        }
        return {">= 2M rows/s", [](const Timed& t, double) {
                    return t.seconds > 0 && t.work.machines / t.seconds >= 2e6;
                }};
    }
    if (caseName == "save sectioned user bank") {
        return {"<= 5x ref", RatioAtMost(5.0)};
    }
    if (caseName == "save legacy user bank") {
        return {"<= 6x ref", RatioAtMost(6.0)};
    }
    if (caseName.rfind("qzrbank check", 0) == 0) {
        return {"<= 2x load", RatioAtMost(2.0)};
    }
    return {"linear", [](const Timed&, double) { return true; }};
}

// Loads: the peak stays within the finished catalogue plus the file's size. Saves: within
// 1 MiB above the catalogue they start from.
struct MemoryTarget {
    const char* text;
    const char* met;
};

MemoryTarget MemoryTargetOf(const std::string& caseName, const Timed& timed) {
    const MemoryResult& memory = timed.memory;
    if (caseName.rfind("load", 0) == 0) {
        return {"<= kept + file", !memory.valid ? "-"
                                  : memory.peakHeap <= memory.retainedHeap + timed.work.bytes
                                      ? "yes"
                                      : "NO"};
    }
    if (caseName.rfind("save", 0) == 0) {
        return {"<= catalogue + 1 MiB", !memory.valid             ? "-"
                                        : memory.peakHeap <= kMiB ? "yes"
                                                                  : "NO"};
    }
    return {"-", "-"};
}

// The cold run's time: "n/a" for an operation whose files could not be dropped from the page
// cache.
std::string ColdMilliseconds(const MemoryResult& memory, double seconds) {
    if (!memory.valid) {
        return "-";
    }
    return memory.readsFiles && !memory.evicted ? "n/a" : Fixed(seconds * 1e3, 2);
}

// One row of the table, its cells in the order of kColumns.
const char* const kColumns[] = {
    "case",     "N",          "cpu ms",   "wall ms",  "cold cpu ms", "cold wall ms",
    "MB/s",     "machines/s", "ref ms",   "x ref",    "target",      "met",
    "peak MiB", "kept MiB",   "file MiB", "RSS+ MiB", "mem target",  "mem met"};

void PrintRow(const std::vector<std::string>& cells) {
    std::string line = "|";
    for (const std::string& cell : cells) {
        line += " " + cell + " |";
    }
    std::printf("%s\n", line.c_str());
}

double ReferenceSeconds(const std::vector<Case>& cases, const Case& c, std::size_t n) {
    for (const Case& r : cases) {
        if (!c.referenceName.empty() && r.name == c.referenceName) {
            const auto ref = g_results.find(BenchmarkName(r, n));
            return ref != g_results.end() ? ref->second.seconds : 0;
        }
    }
    return 0;
}

// Markdown, so that the table can be pasted as it is.
void PrintTable(const std::vector<Case>& cases, const std::vector<SizeData>& sizes) {
    std::printf("\n");
    PrintRow(std::vector<std::string>(std::begin(kColumns), std::end(kColumns)));
    PrintRow(std::vector<std::string>(std::size(kColumns), "---"));
    auto mib = [](double bytes) { return Fixed(bytes / kMiB, 1); };
    for (const Case& c : cases) {
        for (const SizeData& data : sizes) {
            const auto found = g_results.find(BenchmarkName(c, data.n));
            if (found == g_results.end() || found->second.seconds <= 0) {
                continue;
            }
            const Timed& t = found->second;
            const double referenceSeconds = ReferenceSeconds(cases, c, data.n);
            const double ratio = referenceSeconds > 0 ? t.seconds / referenceSeconds : 0;
            const double mbs = t.work.bytes > 0 ? t.work.bytes / kMiB / t.seconds : 0;
            const double perSecond = !c.isReference ? t.work.machines / t.seconds : 0;
            const Target target = c.isReference ? Target{"", nullptr} : TargetOf(c.name, data.n);
            const MemoryTarget memoryTarget = MemoryTargetOf(c.name, t);
            const bool memory = t.memory.valid;
            PrintRow(
                {c.name, std::to_string(data.n), Fixed(t.seconds * 1e3, 2),
                 Fixed(t.wallSeconds * 1e3, 2), ColdMilliseconds(t.memory, t.memory.coldSeconds),
                 ColdMilliseconds(t.memory, t.memory.coldWallSeconds),
                 mbs > 0 ? Fixed(mbs, 0) : "-", Rate(perSecond),
                 referenceSeconds > 0 ? Fixed(referenceSeconds * 1e3, 2) : "-",
                 ratio > 0 ? Fixed(ratio, 2) : "-", target.text,
                 target.holds ? (target.holds(t, ratio) ? "yes" : "NO") : "",
                 memory ? mib(t.memory.peakHeap) : "-", memory ? mib(t.memory.retainedHeap) : "-",
                 t.work.bytes > 0 ? mib(static_cast<double>(t.work.bytes)) : "-",
                 memory ? mib(t.memory.rssGrowth) : "-", memoryTarget.text, memoryTarget.met});
        }
    }
    std::printf(
        "\ncpu ms / wall ms: medians over the repetitions of one operation's CPU time (user and "
        "system, of the thread) and wall time, the files in the page cache (just written or "
        "read).\ncold cpu ms / cold wall ms: the one run of the memory probe, in a fresh process "
        "(every page first touched), the files it reads first dropped from the page cache\n"
        "(n/a where the system cannot drop them).\nx ref: CPU time over that of the reference "
        "pass on the same file(s) at the same N; for qzrbank check, over the library's load of "
        "the same file.\nmachines/s: machines loaded, saved, visited or checked.\n"
        "peak MiB: heap high-water mark above the start of the operation (operator new "
        "accounting, one run in a child process);\nkept MiB: heap still in use after it (for a "
        "load, the catalogue); RSS+ MiB: VmHWM growth over VmRSS at the start.\nmem target: a "
        "load peaks at most at the catalogue it keeps + the file's size, a save at most 1 MiB "
        "above the catalogue it starts from.\nSectioned loads read at most %zu machine sections "
        "of one file.\n",
        kMaxSectionsPerFile);
}

Options ParseOptions(int* argc, char** argv) {
    Options options;
    int kept = 1;
    for (int i = 1; i < *argc; ++i) {
        const std::string arg = argv[i];
        auto value = [&arg](const char* flag) -> const char* {
            const std::size_t length = std::strlen(flag);
            return arg.compare(0, length, flag) == 0 ? arg.c_str() + length : nullptr;
        };
        if (const char* sizes = value("--sizes=")) {
            options.sizes.clear();
            for (const char* p = sizes; *p != '\0';) {
                char* end = nullptr;
                options.sizes.push_back(std::strtoull(p, &end, 10));
                p = *end == ',' ? end + 1 : end;
                if (end == p && *p != '\0') {
                    break;
                }
            }
        } else if (const char* rows = value("--check-rows=")) {
            options.checkRows = std::strtoull(rows, nullptr, 10);
        } else if (const char* dir = value("--data=")) {
            options.dataDir = dir;
        } else if (const char* reps = value("--repetitions=")) {
            options.repetitions = std::max(1, std::atoi(reps));
        } else if (const char* minTime = value("--min-time=")) {
            options.minTime = std::atof(minTime);
        } else if (const char* probe = value("--probe=")) {
            options.probe = std::sscanf(probe, "%zu:%zu:%d", &options.probeCase, &options.probeSize,
                                        &options.probeOut) == 3;
        } else if (arg == "--no-memory") {
            options.memory = false;
        } else {
            if (const char* filter = value("--benchmark_filter=")) {
                options.filter = filter;
            }
            argv[kept++] = argv[i];
        }
    }
    *argc = kept;
    if (options.dataDir.empty()) {
        options.dataDir = (fs::temp_directory_path() / "qzr-bench-data").string();
    }
    return options;
}

}  // namespace

int main(int argc, char** argv) {
    const Options options = ParseOptions(&argc, argv);
    if (options.probe) {
        const std::vector<Case> cases = Cases();
        if (options.probeCase >= cases.size()) {
            return 2;
        }
        const Case& c = cases[options.probeCase];
        RunProbe(c,
                 PrepareSize(options.dataDir, options.probeSize, c.sizes == Sizes::kStandard,
                             c.sizes != Sizes::kStandard),
                 options.probeOut);
        return 0;
    }
    // The timed runs measure a host that has loaded and saved before: memory a destroyed
    // catalogue gave back stays with the process instead of going back to the system, so a
    // run does not depend on what the runs before it happened to free. The cold column gives
    // the other case.
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }

    const std::vector<Case> cases = Cases();
    const bool anyCheck = std::any_of(cases.begin(), cases.end(),
                                      [](const Case& c) { return c.sizes == Sizes::kCheck; });
    const std::size_t checkRows = anyCheck ? options.checkRows : 0;
    std::vector<SizeData> sizes;
    for (const std::size_t n : options.sizes) {
        std::fprintf(stderr, "preparing %zu machines in %s\n", n, options.dataDir.c_str());
        sizes.push_back(PrepareSize(options.dataDir, n, true, n == checkRows));
    }
    if (checkRows > 0 &&
        std::none_of(sizes.begin(), sizes.end(), [](const SizeData& data) { return data.check; })) {
        std::fprintf(stderr, "preparing a legacy bank of %zu rows in %s\n", checkRows,
                     options.dataDir.c_str());
        sizes.push_back(PrepareSize(options.dataDir, checkRows, false, true));
    }

    // Memory and cold runs first, each case in a fresh process of its own.
    std::map<std::string, MemoryResult> memory;
    if (options.memory) {
        for (std::size_t index = 0; index < cases.size(); ++index) {
            for (const SizeData& data : sizes) {
                const std::string name = BenchmarkName(cases[index], data.n);
                if (!cases[index].isReference && cases[index].RunsAt(data) &&
                    (options.filter.empty() ||
                     std::regex_search(name, std::regex(options.filter)))) {
                    memory[name] = MemoryProbe(index, data, options);
                }
            }
        }
    }

    for (const Case& c : cases) {
        for (const SizeData& data : sizes) {
            if (c.RunsAt(data)) {
                RegisterCase(c, data, options);
            }
        }
    }
    MedianCollector reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    for (auto& [name, result] : memory) {
        g_results[name].memory = result;
    }
    PrintTable(cases, sizes);
    benchmark::Shutdown();
    return 0;
}
