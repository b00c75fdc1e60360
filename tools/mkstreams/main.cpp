/*
 * mkstreams: makes the transport streams of the laboratory's line-up.
 *
 * Each multiplex of the channel files becomes a file in the folder of --out, and streams.cfg there
 * tells which transmitter plays which. The stamp beside a file tells what it was made of: a file is
 * made again only when something of that has changed, and is removed, like its stamp, when the
 * line-up has it no more. Files without a stamp are somebody else's.
 */
#include <fnmatch.h>
#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "simulator/media/live_index.h"
#include "tools/common/files.h"
#include "tools/common/options.h"
#include "tools/mkstreams/indexer.h"
#include "tools/mkstreams/maker.h"
#include "tools/mkstreams/recordings.h"

using namespace mkstreams;
namespace fs = std::filesystem;

struct Options {
    std::string config;
    std::string out;
    std::string only = "*";
    bool variants = false;
    bool quiet = false;
};

/** What the manifest says of a file. */
struct Made {
    size_t packetBytes;
    size_t packets;
    int64_t packetTicks;
};

/** Writes a file whole or not at all, so that it lasts. */
static bool writeFile(const fs::path& path, const void* data, size_t size) {
    std::string temporary = path.string() + ".tmp";
    FILE* file = fopen(temporary.c_str(), "wbe");
    bool written = file != nullptr && fwrite(data, 1, size, file) == size && fflush(file) == 0 &&
                   fdatasync(fileno(file)) == 0;
    written = file != nullptr && fclose(file) == 0 && written;
    if (written && rename(temporary.c_str(), path.c_str()) == 0)
        return true;
    remove(temporary.c_str());
    return false;
}

static fs::path stampPath(const fs::path& file) {
    return file.string() + ".stamp";
}

static fs::path indexPath(const fs::path& file) {
    return file.string() + ".index";
}

/** The time of a file's last change, nanoseconds; a stamp is that of the very file that has it. */
static int64_t changeTime(const fs::path& file) {
    struct stat status = {};
    stat(file.c_str(), &status);
    return status.st_mtim.tv_sec * INT64_C(1000000000) + status.st_mtim.tv_nsec;
}

/** Whether a file is as inputs with that hash would make it; fills what the manifest needs. */
static bool isCurrent(const fs::path& file, uint64_t hash, Made* made) {
    uint64_t stamped = 0;
    int64_t changed = 0;
    if (sscanf(readText(stampPath(file)).c_str(), "%" SCNx64 " %zu %zu %" SCNd64 " %" SCNd64,
               &stamped, &made->packetBytes, &made->packets, &made->packetTicks, &changed) != 5)
        return false;
    std::error_code failure;
    return stamped == hash && fs::file_size(file, failure) == made->packetBytes * made->packets &&
           !failure && changed == changeTime(file);
}

static bool writeStream(const fs::path& file, const Bytes& bytes, uint64_t hash, const Made& made) {
    std::error_code ignored;
    fs::remove(indexPath(file), ignored);
    if (!writeFile(file, bytes.data(), bytes.size()))
        return false;
    char stamp[120];
    int size = snprintf(stamp, sizeof(stamp), "%016" PRIx64 " %zu %zu %" PRId64 " %" PRId64 "\n",
                        hash, made.packetBytes, made.packets, made.packetTicks, changeTime(file));
    return writeFile(stampPath(file), stamp, static_cast<size_t>(size));
}

/** One run of the program. */
struct Run {
    Options options;
    LineUp lineUp;
    std::map<std::string, Made> made; /**< by file name */
    bool good = true;
};

/** A file to be made, and what came of it. */
struct Job {
    const Multiplex* multiplex;
    uint64_t hash; /**< of its inputs */
    Made made;
    bool finished;     /**< the file is there */
    std::string error; /**< empty when all went well */
};

static bool wanted(const Run& run, const std::string& name) {
    return fnmatch(run.options.only.c_str(), name.c_str(), 0) == 0;
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
    job->finished = writeStream(file, stream.packets, job->hash, job->made);
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
        uint64_t hash = inputsHash(inputsOf(run.lineUp, multiplex));
        Made made = {};
        if (isCurrent(fs::path(run.options.out) / multiplex.file, hash, &made))
            run.made[multiplex.file] = made;
        else if (wanted(run, multiplex.file))
            jobs.push_back({&multiplex, hash, {}, false, ""});
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

static std::string variantFile(const Variant& variant) {
    return std::string("test_") + variant.name + ".ts";
}

/** A multiplex of which variants are made, and its good stream when that has been made. */
struct VariantSource {
    uint64_t hash = 0;
    std::vector<Burst> bursts;
    TransportStream good;
};

/** Makes the variants, or without the option only notes those that are there and current. */
static void makeVariants(Run& run) {
    EncodedContent encoded;
    std::map<size_t, VariantSource> sources;
    for (size_t i = 0; i < variantCount; i++) {
        const Variant& variant = variants[i];
        if (variant.multiplex >= run.lineUp.multiplexes.size())
            continue;
        const Multiplex& multiplex = run.lineUp.multiplexes[variant.multiplex];
        VariantSource& source = sources[variant.multiplex];
        if (source.bursts.empty()) {
            source.hash = inputsHash(inputsOf(run.lineUp, multiplex));
            source.bursts = tablesOf(run.lineUp, multiplex);
        }
        std::string name = variantFile(variant);
        fs::path file = fs::path(run.options.out) / name;
        uint64_t hash = variantHash(source.hash, name);
        Made made = {};
        if (isCurrent(file, hash, &made)) {
            run.made[name] = made;
            continue;
        }
        if (!run.options.variants || !wanted(run, name))
            continue;
        std::string error;
        if (source.good.packets.empty() &&
            !makeStream(run.lineUp, multiplex, &encoded, &source.good, &error)) {
            complain(run, name, error);
            continue;
        }
        Bytes bytes = variant.make(multiplex, source.good, source.bursts);
        made = {variant.packetBytes, bytes.size() / variant.packetBytes, source.good.packetTicks};
        if (writeStream(file, bytes, hash, made))
            run.made[name] = made;
        else
            complain(run, name, "cannot be written");
    }
}

/** Changes with what is written of a loop. */
static const std::string recordingVersion = "2 ";

/** Makes the recordings, and what decoders find in their PES packets. */
static void makeRecordings(Run& run) {
    EncodedContent encoded;
    const fs::path folder = fs::path(run.options.out) / "pvr";
    const fs::path pieces = sim::pieceOrigin(run.options.out + "/") + ".index";
    bool current = hasIndex(pieces);
    std::map<std::string, TransportStream> loops;
    for (size_t i = 0; i < recordingCount; i++) {
        const Recording& recording = recordings[i];
        const std::string name = std::string("pvr/") + recording.file;
        Multiplex service;
        Made made = {};
        std::string error;
        if (!wanted(run, name) ||
            !recordedService(run.options.config, run.lineUp, recording, &service))
            continue;
        uint64_t hash = variantHash(inputsHash(recordingInputs(service)),
                                    recordingVersion + name + std::to_string(recording.seconds));
        if (current && isCurrent(folder / recording.file, hash, &made))
            continue;
        current = false;
        TransportStream& loop = loops[service.file];
        if (loop.packets.empty() && !makeLoop(service, &encoded, &loop, &error)) {
            complain(run, name, error);
            continue;
        }
        lookAtPieces(service, loop);
        Bytes bytes = record(recording, loop);
        // Its size tells whether a file is whole; one that begins in a packet counts in bytes.
        made = {recording.skipped == 0 ? recordPacketSize : 1, 0, loop.packetTicks};
        made.packets = bytes.size() / made.packetBytes;
        std::error_code failure;
        fs::create_directories(folder, failure);
        if (!writeStream(folder / recording.file, bytes, hash, made))
            complain(run, name, "cannot be written");
    }
    // What the cases record and play again.
    const Multiplex& first = run.lineUp.multiplexes.front();
    auto played = run.made.find(first.file);
    if (!current && played != run.made.end()) {
        const std::string bytes = readText(fs::path(run.options.out) / first.file);
        lookAtPieces(first, {Bytes(bytes.begin(), bytes.end()), played->second.packetTicks});
    }
    const std::string text = sim::writePieces();
    if (!current && !loops.empty() && !writeFile(pieces, text.data(), text.size()))
        complain(run, pieces.string(), "cannot be written");
}

/** Lets decoders look at the streams that have no index, so that nobody who plays them has to. */
static void makeIndexes(Run& run) {
    std::set<std::string> seen;
    for (const Multiplex& multiplex : run.lineUp.multiplexes) {
        auto made = run.made.find(multiplex.file);
        fs::path file = fs::path(run.options.out) / multiplex.file;
        if (made == run.made.end() || !seen.insert(multiplex.file).second ||
            hasIndex(indexPath(file)))
            continue;
        if (!makeIndex(file, static_cast<uint32_t>(made->second.packetTicks), multiplex))
            complain(run, multiplex.file, "its pictures and sound cannot be indexed");
    }
}

/** Removes what an earlier run made and neither the line-up nor the manifest names. */
static void removeUnused(const Run& run) {
    std::set<std::string> used;
    for (const Multiplex& multiplex : run.lineUp.multiplexes)
        used.insert(multiplex.file);
    for (const auto& [name, made] : run.made)
        used.insert(name);
    std::vector<fs::path> unused;
    for (const fs::directory_entry& entry : fs::directory_iterator(run.options.out))
        if (entry.path().extension() == ".stamp" && used.count(entry.path().stem().string()) == 0)
            unused.push_back(entry.path());
    for (const fs::path& stamp : unused) {
        std::error_code ignored;
        fs::remove(stamp.parent_path() / stamp.stem(), ignored);
        fs::remove(indexPath(stamp.parent_path() / stamp.stem()), ignored);
        fs::remove(stamp, ignored);
        if (!run.options.quiet)
            printf("%s: removed\n", stamp.stem().c_str());
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
        std::string name = variantFile(variants[i]);
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
    return readText(path) == text || writeFile(path, text.data(), text.size());
}

int main(int argc, char** argv) {
    Run run = {};
    CLI::App app("Makes the transport streams of the laboratory's line-up.", "mkstreams");
    app.add_option("--config", run.options.config,
                   "the configuration tree; its folder common is read")
        ->required()
        ->type_name("DIR");
    app.add_option("--out", run.options.out,
                   "folder of the streams and of streams.cfg, made if need be")
        ->required()
        ->type_name("DIR");
    app.add_option("--only", run.options.only,
                   "make only files whose name matches, as the shell matches")
        ->type_name("PATTERN");
    app.add_flag("--variants", run.options.variants,
                 "make the streams for tests too: damaged, discontinuous, ...");
    app.add_flag("--quiet", run.options.quiet, "say nothing but what goes wrong");
    int answer = readOptions(&app, argc, argv);
    if (answer >= 0)
        return answer;
    std::string error;
    if (!readLineUp(run.options.config, &run.lineUp, &error)) {
        fprintf(stderr, "mkstreams: %s\n", error.c_str());
        return EXIT_FAILED;
    }
    std::error_code failure;
    fs::create_directories(run.options.out, failure);
    makeFiles(run);
    makeVariants(run);
    makeIndexes(run);
    makeRecordings(run);
    if (!writeManifest(run))
        complain(run, "streams.cfg", "cannot be written in " + run.options.out);
    if (run.good)
        removeUnused(run);
    return run.good ? EXIT_DONE : EXIT_FAILED;
}
