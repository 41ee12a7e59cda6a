// How data files move: an upload and a download through the component beside a plain libcurl
// POST of the same bytes to the same page of the reference server, the peak memory of each
// move over the file's size, and a large file's CRC beside reading it into zlib's crc32.
// Every move runs in a child process of its own, so its peak memory is its own: the figure is
// the child's peak less that of a child that only logs in.
#include <curl/curl.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "server/MorvaneServer.h"
#include "session/mdlLogin.h"
#include "state/ProcessState.h"
#include "state/basGetCRC.h"
#include "state/mdlRegConstMorvane.h"
#include "state/mdlRegControlMorvane.h"
#include "support/ScriptedToolkit.h"
#include "transport/RequestBody.h"
#include "transport/mdlServerConst.h"
#include "transport/mdlServerFile.h"
#include "transport/mdlServerReply.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using namespace morvane;

constexpr const char* kContract = "K-1";
constexpr const char* kUser = "u1";
constexpr const char* kPassword = "secret-1";
constexpr std::int32_t kCustomer = 1;

[[noreturn]] void Fail(const std::string& what) {
    std::fprintf(stderr, "%s\n", what.c_str());
    std::_Exit(1);
}

struct Server {
    pid_t pid = -1;
    int hold = -1;  // closed: the server stops
    std::string name, certFile;
};

// The reference server in a process of its own, so the measured children share no thread
// or connection with it.
Server StartServer(const fs::path& dir) {
    int ready[2], hold[2];
    if (::pipe(ready) != 0 || ::pipe(hold) != 0) Fail("pipe");
    const pid_t pid = ::fork();
    if (pid < 0) Fail("fork");
    if (pid == 0) {
        ::close(ready[0]);
        ::close(hold[1]);
        server::ServerOptions options;
        options.dataDir = dir / "server";
        options.maxUploadBytes = std::size_t{1} << 31;
        server::MorvaneServer server(options);
        server::AccountFields account;
        account.contractNo = kContract;
        account.contractBegin = "2026/04/01";
        account.contractEnd = "2099/03/31";
        account.sharedCount = 10;
        account.maxCustomer = 10;
        server.CreateAccount(account);
        server.AddUser(kContract, kUser, kPassword, "bench");
        server.Start();
        const std::string line = server.ServerName() + "\n" + server.CertFile().string() + "\n";
        if (::write(ready[1], line.data(), line.size()) < 0) std::_Exit(1);
        ::close(ready[1]);
        char c;
        while (::read(hold[0], &c, 1) > 0) {
        }
        server.Stop();
        std::_Exit(0);
    }
    ::close(ready[1]);
    ::close(hold[0]);
    std::string text;
    char buf[512];
    ssize_t n;
    while ((n = ::read(ready[0], buf, sizeof buf)) > 0) text.append(buf, static_cast<size_t>(n));
    ::close(ready[0]);
    const auto cut = text.find('\n');
    if (cut == std::string::npos) Fail("the server did not start");
    return {pid, hold[1], text.substr(0, cut), text.substr(cut + 1, text.size() - cut - 2)};
}

// The component as an office uses it: its settings, the server's name and certificate, a
// login; the direct routes, with no progress form.
void UseOffice(const fs::path& dir, const Server& server) {
    ProcessState& state = State();
    state.SetSettingsRoot(dir / "config");
    state.SetToolkit(std::make_shared<test::ScriptedToolkit>());
    platform::HttpOptions http;
    http.caFile = server.certFile;
    state.SetHttpOptions(http);
    WriteMorvaneSetting(reg::kServerName, server.name);
    WriteMorvaneSetting(reg::kContractNo, kContract);
    state.objectUsage = 1;
    if (!DoLogin(kUser, kPassword, kContract)) Fail("login failed");
}

struct Figures {
    double medianMs = 0;     // wall time
    double medianCpuMs = 0;  // the process's own CPU time, less swayed by a busy machine
    long peakKiB = 0;
};

double CpuMs() {
    timespec t{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

double Median(std::vector<double> values) {
    if (values.empty()) return 0;
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// Runs the move reps times in a child after the office's set-up; prepare runs untimed before
// each. The child's peak memory comes from wait4.
Figures InChild(const fs::path& dir, const Server& server, int reps,
                const std::function<void()>& prepare, const std::function<void()>& move) {
    int out[2];
    if (::pipe(out) != 0) Fail("pipe");
    const pid_t pid = ::fork();
    if (pid < 0) Fail("fork");
    if (pid == 0) {
        ::close(out[0]);
        UseOffice(dir, server);
        std::vector<double> ms, cpu;
        for (int i = 0; i < reps; ++i) {
            if (prepare) prepare();
            const auto start = Clock::now();
            const double cpuStart = CpuMs();
            if (move) move();
            cpu.push_back(CpuMs() - cpuStart);
            ms.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
        }
        const double medians[2] = {Median(ms), Median(cpu)};
        if (::write(out[1], medians, sizeof medians) != sizeof medians) std::_Exit(1);
        std::_Exit(0);
    }
    ::close(out[1]);
    Figures f;
    double medians[2] = {};
    if (::read(out[0], medians, sizeof medians) != sizeof medians) Fail("a move failed");
    f.medianMs = medians[0];
    f.medianCpuMs = medians[1];
    ::close(out[0]);
    int status = 0;
    rusage usage{};
    if (::wait4(pid, &status, 0, &usage) != pid || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        Fail("a move failed");
    f.peakKiB = usage.ru_maxrss;
    return f;
}

void Relogin() {
    if (!DoLogin(kUser, kPassword, kContract)) Fail("login failed");
}

std::string Url(const Server& server, std::string_view page) {
    return "https://" + server.name + "/" + std::string(page);
}

size_t KeepText(char* data, size_t size, size_t count, void* user) {
    static_cast<std::string*>(user)->append(data, size * count);
    return size * count;
}

// The floor: one libcurl POST of bytes held in memory, the reply written where it is told.
void PlainPost(const Server& server, std::string_view page, const platform::HttpHeaders& headers,
               const std::string& body, curl_write_callback write, void* where) {
    CURL* c = curl_easy_init();
    curl_slist* list = nullptr;
    for (const auto& [name, value] : headers)
        list = curl_slist_append(list, (name + ": " + value).c_str());
    list = curl_slist_append(list, "Expect:");
    const std::string url = Url(server, page);
    curl_easy_setopt(c, CURLOPT_URL, url.c_str());
    curl_easy_setopt(c, CURLOPT_POSTFIELDS, body.data());
    curl_easy_setopt(c, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    curl_easy_setopt(c, CURLOPT_HTTPHEADER, list);
    curl_easy_setopt(c, CURLOPT_CAINFO, server.certFile.c_str());
    curl_easy_setopt(c, CURLOPT_WRITEFUNCTION, write);
    curl_easy_setopt(c, CURLOPT_WRITEDATA, where);
    long status = 0;
    const CURLcode rc = curl_easy_perform(c);
    curl_easy_getinfo(c, CURLINFO_RESPONSE_CODE, &status);
    curl_slist_free_all(list);
    curl_easy_cleanup(c);
    if (rc != CURLE_OK || status != 200) Fail("plain POST failed");
}

size_t ToFile(char* data, size_t size, size_t count, void* user) {
    return std::fwrite(data, size, count, static_cast<FILE*>(user));
}

void WriteFile(const fs::path& path, std::uint64_t size) {
    std::ofstream out(path, std::ios::binary);
    std::string piece(std::size_t{1} << 20, '\0');
    for (std::uint64_t done = 0; done < size;) {
        for (std::size_t i = 0; i < piece.size(); ++i)
            piece[i] = static_cast<char>((done + i) * 2654435761u >> 13);
        const auto n = static_cast<std::size_t>(std::min<std::uint64_t>(piece.size(), size - done));
        out.write(piece.data(), static_cast<std::streamsize>(n));
        done += n;
    }
}

std::string ReadWhole(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void PrintMove(const char* name, std::uint64_t size, const Figures& mine, const Figures& floor,
               const Figures& base) {
    const double over = static_cast<double>(std::max(0L, mine.peakKiB - base.peakKiB)) * 1024.0;
    std::printf(
        "%-9s wall %7.1f ms, floor %7.1f ms, ratio %5.2f (goal <= 1.25); CPU %6.1f ms,"
        " floor %6.1f ms, ratio %5.2f\n",
        name, mine.medianMs, floor.medianMs, mine.medianMs / floor.medianMs, mine.medianCpuMs,
        floor.medianCpuMs, mine.medianCpuMs / floor.medianCpuMs);
    std::printf("%-9s peak memory %6.2f MiB over the set-up, %5.2f of the file (goal <= 1.2)\n",
                name, over / (1 << 20), over / static_cast<double>(size));
}

}  // namespace

int main(int argc, char** argv) {
    const std::uint64_t size = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 8u << 20;
    const std::uint64_t crcSize = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 100u << 20;
    const int reps = argc > 3 ? std::atoi(argv[3]) : 5;
    std::string pattern = (fs::temp_directory_path() / "morvane-filemoves-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) return 1;
    const fs::path dir = pattern;
    const Server server = StartServer(dir);
    curl_global_init(CURL_GLOBAL_DEFAULT);

    const fs::path up = dir / "kessan.bin";
    const fs::path down = dir / "down";
    fs::create_directories(down);
    WriteFile(up, size);
    const std::string name = up.filename().string();
    const std::string custId = std::to_string(kCustomer);

    // The customer, and the file on the server for the downloads.
    InChild(dir, server, 1, {}, [&] {
        std::string create = LowerCustomerBody(kCustomer);
        AppendField(create, "Code", "B-1");
        if (SendRequest(page::kCreateCompKihon, create).empty()) Fail("no customer");
        if (ServerUploadFile(page::kSetKessanFile, kUser, GetLoginToken(), custId, up.string(),
                             nullptr)
                .empty())
            Fail("first upload failed");
    });

    const Figures base = InChild(dir, server, 1, {}, {});
    const Figures upload = InChild(dir, server, reps, Relogin, [&] {
        if (ServerUploadFile(page::kSetKessanFile, kUser, GetLoginToken(), custId, up.string(),
                             nullptr)
                .empty())
            Fail("upload failed");
    });
    std::string bytes;
    const auto readAndRelogin = [&] {
        Relogin();
        bytes = ReadWhole(up);
    };
    const Figures uploadFloor = InChild(dir, server, reps, readAndRelogin, [&] {
        std::string reply;
        PlainPost(server, page::kSetKessanFile,
                  UploadHeaders(kUser, GetLoginToken(), custId, up.string(), bytes.size()), bytes,
                  KeepText, &reply);
        if (reply.find("<flags>1</flags>") == std::string::npos) Fail("plain upload refused");
    });
    const Figures download = InChild(dir, server, reps, {}, [&] {
        if (ServerDownloadFile(page::kGetKessanFile, FileBody(kCustomer, name), down.string(), name,
                               nullptr) != "True")
            Fail("download failed");
    });
    const Figures downloadFloor = InChild(dir, server, reps, {}, [&] {
        FILE* out = std::fopen((down / "plain.bin").c_str(), "wb");
        if (!out) Fail("cannot write");
        PlainPost(server, page::kGetKessanFile,
                  {{"Content-Type", "application/x-www-form-urlencoded"}},
                  FileBody(kCustomer, name), ToFile, out);
        std::fclose(out);
    });
    if (fs::file_size(down / name) != size) Fail("the download is not whole");

    std::printf("file of %.2f MiB, median of %d, the plain POST's time read into memory first\n",
                static_cast<double>(size) / (1 << 20), reps);
    PrintMove("upload", size, upload, uploadFloor, base);
    PrintMove("download", size, download, downloadFloor, base);

    // The CRC of a large file, read from the page cache.
    const fs::path large = dir / "large.bin";
    WriteFile(large, crcSize);
    (void)ReadWhole(large);
    const Figures crc = InChild(dir, server, reps, {}, [&] { (void)GetFileCRC(large.string()); });
    const Figures crcFloor = InChild(dir, server, reps, {}, [&] {
        const int fd = ::open(large.c_str(), O_RDONLY);
        std::vector<unsigned char> buf(std::size_t{1} << 20);
        uLong value = crc32(0, nullptr, 0);
        ssize_t n;
        while ((n = ::read(fd, buf.data(), buf.size())) > 0)
            value = crc32(value, buf.data(), static_cast<uInt>(n));
        ::close(fd);
        if (value == 1) std::puts("");  // keeps the loop from being dropped
    });
    const double over = static_cast<double>(std::max(0L, crc.peakKiB - base.peakKiB)) / 1024.0;
    std::printf(
        "CRC of %.0f MiB: wall %7.1f ms, read + crc32 %7.1f ms, ratio %5.2f; CPU %6.1f ms, "
        "read + crc32 %6.1f ms, ratio %5.2f (goal <= 1.1)\n",
        static_cast<double>(crcSize) / (1 << 20), crc.medianMs, crcFloor.medianMs,
        crc.medianMs / crcFloor.medianMs, crc.medianCpuMs, crcFloor.medianCpuMs,
        crc.medianCpuMs / crcFloor.medianCpuMs);
    std::printf("CRC peak memory %.2f MiB over the set-up, %.3f of the file\n", over,
                over * (1 << 20) / static_cast<double>(crcSize));

    ::close(server.hold);
    ::waitpid(server.pid, nullptr, 0);
    std::error_code ec;
    fs::remove_all(dir, ec);
    return 0;
}
