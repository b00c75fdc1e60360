/*
 * mkstreams: makes the transport streams of the laboratory's line-up.
 *
 * Each multiplex of the channel files becomes a file in the folder of --out, and streams.cfg there
 * tells which transmitter plays which. A file is made again only when something that it is made of
 * has changed: the configuration, or this program.
 */
#include <fnmatch.h>
#include <stdio.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "tools/common/options.h"
#include "tools/mkstreams/maker.h"

using namespace mkstreams;
namespace fs = std::filesystem;

struct Options {
    std::string config;
    std::string out;
    std::string only;
    bool variants;
    bool quiet;
};

/** What the manifest says of a file. */
struct Made {
    size_t packetBytes;
    size_t packets;
    int64_t packetTicks;
};

/** Reads the options; -1 to go on, else what main returns. */
static int readOptions(int argc, char** argv, Options* options) {
    CLI::App app("Makes the transport streams of the configured line-up.", "mkstreams");
    app.add_option("--config", options->config, "The configuration tree; its folder common is read")
        ->type_name("DIR")
        ->required();
    app.add_option("--out", options->out,
                   "Folder of the streams and of streams.cfg, made if need be")
        ->type_name("DIR")
        ->required();
    app.add_option("--only", options->only,
                   "Make only files whose name matches, '*' and '?' as in a shell")
        ->type_name("PATTERN");
    app.add_flag("--variants", options->variants,
                 "Make the streams for tests too: damaged, discontinuous, ...");
    app.add_flag("--quiet", options->quiet, "Say nothing but what goes wrong");
    return readOptions(&app, argc, argv);
}

static std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

/** Writes a file whole or not at all. */
static bool writeFile(const fs::path& path, const void* data, size_t size) {
    fs::path temporary = path;
    temporary += ".tmp";
    {
        std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
        file.write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
        if (!file.flush())
            return false;
    }
    std::error_code failure;
    fs::rename(temporary, path, failure);
    return !failure;
}

/** FNV-1a of 64 bits: enough to tell a change. */
static uint64_t hashed(uint64_t hash, const std::string& text) {
    for (char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    return hash;
}

/** Hash of all that streams are made of: the configuration's line-up and this program. */
static uint64_t inputsHash(const std::string& config) {
    uint64_t hash = hashed(0xCBF29CE484222325, readFile("/proc/self/exe"));
    std::map<std::string, std::string> files;
    std::error_code failure;
    for (const fs::directory_entry& entry : fs::directory_iterator(config + "/common", failure)) {
        std::string name = entry.path().filename().string();
        if (name == "demux_config.cfg" || name.rfind("channel_", 0) == 0)
            files[name] = readFile(entry.path());
    }
    for (const auto& file : files)
        hash = hashed(hashed(hash, file.first), file.second);
    return hash;
}

static fs::path stampPath(const fs::path& file) {
    fs::path path = file;
    path += ".stamp";
    return path;
}

/** Whether a file is as the inputs would make it; fills what the manifest needs. */
static bool isCurrent(const fs::path& file, uint64_t hash, Made* made) {
    unsigned long long stamped = 0;
    long long ticks = 0;
    std::string stamp = readFile(stampPath(file));
    if (sscanf(stamp.c_str(), "%llx %zu %zu %lld", &stamped, &made->packetBytes, &made->packets,
               &ticks) != 4)
        return false;
    made->packetTicks = ticks;
    std::error_code failure;
    return stamped == hash && fs::file_size(file, failure) == made->packetBytes * made->packets &&
           !failure;
}

static bool writeStream(const fs::path& file, const Bytes& bytes, uint64_t hash, const Made& made) {
    char stamp[80];
    int size =
        snprintf(stamp, sizeof(stamp), "%llx %zu %zu %lld\n", static_cast<unsigned long long>(hash),
                 made.packetBytes, made.packets, static_cast<long long>(made.packetTicks));
    return writeFile(file, bytes.data(), bytes.size()) &&
           writeFile(stampPath(file), stamp, static_cast<size_t>(size));
}

/** One run of the program. */
struct Run {
    Options options;
    LineUp lineUp;
    uint64_t hash;
    std::map<std::string, Made> made; /**< by file name */
    bool good;
};

/** A file to be made, and what came of it. */
struct Job {
    const Multiplex* multiplex;
    Made made;
    bool finished;     /**< the file is there */
    std::string error; /**< empty when all went well */
};

static bool wanted(const Run& run, const std::string& name) {
    return run.options.only.empty() || fnmatch(run.options.only.c_str(), name.c_str(), 0) == 0;
}

static void complain(Run& run, const std::string& file, const std::string& error) {
    fprintf(stderr, "mkstreams: %s: %s\n", file.c_str(), error.c_str());
    run.good = false;
}

static void makeFile(const Run& run, EncodedContent* encoded, Job* job) {
    TransportStream stream;
    if (!makeStream(run.lineUp, *job->multiplex, encoded, &stream, &job->error))
        return;
    job->made = {packetSize, stream.packets.size() / packetSize, stream.packetTicks};
    fs::path file = fs::path(run.options.out) / job->multiplex->file;
    job->finished = writeStream(file, stream.packets, run.hash, job->made);
    if (!job->finished)
        job->error = "cannot be written";
}

/** The files that must be made; what need not be goes into the manifest at once. */
static std::vector<Job> jobsOf(Run& run) {
    std::vector<Job> jobs;
    std::set<std::string> seen;
    for (const Multiplex& multiplex : run.lineUp.multiplexes) {
        if (!seen.insert(multiplex.file).second)
            continue;
        Made made = {};
        if (isCurrent(fs::path(run.options.out) / multiplex.file, run.hash, &made))
            run.made[multiplex.file] = made;
        else if (wanted(run, multiplex.file))
            jobs.push_back({&multiplex, {}, false, ""});
    }
    return jobs;
}

/** Makes files from both ends of the list at once: neighbours in it show and play the same, and
 *  each end codes that once. */
static void makeFiles(Run& run) {
    std::vector<Job> jobs = jobsOf(run);
    std::mutex mutex;
    size_t front = 0;
    size_t back = jobs.size();
    auto work = [&](bool fromFront) {
        EncodedContent encoded;
        while (true) {
            Job* job = nullptr;
            {
                std::lock_guard<std::mutex> lock(mutex);
                if (front == back)
                    return;
                job = &jobs[fromFront ? front++ : --back];
            }
            makeFile(run, &encoded, job);
        }
    };
    std::thread other(work, false);
    work(true);
    other.join();
    for (const Job& job : jobs) {
        if (!job.finished) {
            complain(run, job.multiplex->file, job.error);
            continue;
        }
        run.made[job.multiplex->file] = job.made;
        if (!run.options.quiet)
            printf("%s: %zu packets\n", job.multiplex->file.c_str(), job.made.packets);
    }
}

static void makeVariants(Run& run) {
    const Multiplex& multiplex = run.lineUp.multiplexes.front();
    EncodedContent encoded;
    TransportStream good;
    std::vector<Burst> bursts = tablesOf(run.lineUp, multiplex);
    for (size_t i = 0; i < variantCount; i++) {
        std::string name = std::string("test_") + variants[i].name + ".ts";
        fs::path file = fs::path(run.options.out) / name;
        Made made = {};
        if (isCurrent(file, run.hash, &made)) {
            run.made[name] = made;
            continue;
        }
        if (!wanted(run, name))
            continue;
        std::string error;
        if (good.packets.empty() && !makeStream(run.lineUp, multiplex, &encoded, &good, &error)) {
            complain(run, name, error);
            return;
        }
        Bytes bytes = variants[i].make(multiplex, good, bursts);
        made = {variants[i].packetBytes, bytes.size() / variants[i].packetBytes, good.packetTicks};
        if (writeStream(file, bytes, run.hash, made))
            run.made[name] = made;
        else
            complain(run, name, "cannot be written");
    }
}

/* The manifest --------------------------------------------------------------------------------- */

static void put(std::string& to, const char* key, int64_t value) {
    to += std::string(key) + "=" + std::to_string(value) + "\n";
}

static void putFile(std::string& to, const std::string& name, const Made& made) {
    int64_t duration = static_cast<int64_t>(made.packets) * made.packetTicks;
    to += "FILE=" + name + "\n";
    put(to, "PACKET_SIZE", static_cast<int64_t>(made.packetBytes));
    put(to, "PACKETS", static_cast<int64_t>(made.packets));
    put(to, "PACKET_TICKS", made.packetTicks);
    put(to, "BIT_RATE", (27000000LL * 1504 + made.packetTicks / 2) / made.packetTicks);
    put(to, "DURATION_MS", (duration + 13500) / 27000);
}

static void putTransmitter(std::string& to, const Multiplex& multiplex, const Made& made) {
    const Channel& first = multiplex.channels.front();
    put(to, "SYSTEM", multiplex.standard->system);
    put(to, "FREQUENCY", first.frequencyKHz);
    put(to, "TS_ID", multiplex.tsId);
    put(to, "STREAM_ID", first.streamId);
    put(to, "FIRST_CHANNEL", first.index);
    to += "CHANNELS=";
    for (const Channel& channel : multiplex.channels)
        to += (&channel == &first ? "" : " ") + std::to_string(channel.index);
    to += "\n";
    putFile(to, multiplex.file, made);
}

/** Writes streams.cfg, with the files that are there. */
static bool writeManifest(const Run& run) {
    std::string body;
    int64_t transmitters = 0;
    for (const Multiplex& multiplex : run.lineUp.multiplexes) {
        auto made = run.made.find(multiplex.file);
        if (made == run.made.end())
            continue;
        body += "\n[TRANSMITTER" + std::to_string(transmitters++) + "]\n";
        putTransmitter(body, multiplex, made->second);
    }
    int64_t found = 0;
    for (size_t i = 0; i < variantCount; i++) {
        std::string name = std::string("test_") + variants[i].name + ".ts";
        auto made = run.made.find(name);
        if (made == run.made.end())
            continue;
        body += "\n[VARIANT" + std::to_string(found++) + "]\nNAME=" + variants[i].name + "\n";
        putFile(body, name, made->second);
    }
    std::string head = "# Made by mkstreams: which transmitter plays which stream.\n[COMMON]\n";
    put(head, "TRANSMITTER_NUM", transmitters);
    put(head, "VARIANT_NUM", found);
    std::string text = head + body;
    fs::path path = fs::path(run.options.out) / "streams.cfg";
    return readFile(path) == text || writeFile(path, text.data(), text.size());
}

int main(int argc, char** argv) {
    Run run = {};
    run.good = true;
    int code = readOptions(argc, argv, &run.options);
    if (code >= 0)
        return code;
    std::string error;
    if (!readLineUp(run.options.config, &run.lineUp, &error)) {
        fprintf(stderr, "mkstreams: %s\n", error.c_str());
        return 1;
    }
    std::error_code failure;
    fs::create_directories(run.options.out, failure);
    run.hash = inputsHash(run.options.config);
    makeFiles(run);
    if (run.options.variants)
        makeVariants(run);
    if (!writeManifest(run)) {
        complain(run, "streams.cfg", "cannot be written in " + run.options.out);
    }
    return run.good ? 0 : 1;
}
