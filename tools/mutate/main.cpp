// Mutants: the sources of a module are changed one place at a time, and what tests the module has
// to notice. A change that nothing notices is a check that is missing, or code without a purpose.
// docs/mutants.md tells how to read the score.
#include <fnmatch.h>
#include <stdio.h>
#include <stdlib.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <mutex>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "tools/common/files.h"
#include "tools/common/options.h"
#include "tools/mutate/build.h"
#include "tools/mutate/judge.h"
#include "tools/mutate/places.h"
#include "tools/mutate/scopes.h"

namespace fs = std::filesystem;

namespace {

struct Options {
    fs::path source = ".";
    fs::path build = "build/debug";
    fs::path out = "build/mutants";
    std::vector<std::string> modules;
    std::string pattern = "*";
    size_t sample = 0;
    uint64_t seed = 1;
    unsigned jobs = 2;
    bool list = false;
    bool afresh = false;
};

enum class Verdict { FOUND, SURVIVED, EXCUSED, NO_PROGRAM };

struct Result {
    Verdict verdict;
    /** What found it. */
    std::string by;
};

/** What was found out in earlier runs, by the mutant's name. */
struct Known {
    std::string basis;
    std::string verdict;
    std::string by;
};

/** One module at work. */
struct Work {
    const Scope* scope;
    fs::path out;
    Places places;
    std::vector<Judge> judges;
    std::vector<std::string> programs;
    /** Tells one state of programs and data from another. */
    std::string basis;
    std::map<std::string, Known> known;
    std::map<std::string, std::string> reasons;
};

/** Sources of the build that a scope names, and whether a file is one of its. */
bool isOf(const Options& options, const Scope& scope, const std::string& file) {
    std::string path = fs::path(file).lexically_proximate(fs::canonical(options.source)).string();
    return std::any_of(scope.sources.begin(), scope.sources.end(), [&](const char* pattern) {
        return fnmatch(pattern, path.c_str(), FNM_PATHNAME) == 0;
    });
}

std::vector<std::string> programsOf(const Scope& scope) {
    std::vector<std::string> programs(scope.programs.begin(), scope.programs.end());
    if (!scope.golden.empty())
        programs.push_back("goldencalls");
    for (const SuitePrograms& suites : scope.suites)
        programs.push_back(suites.program);
    return programs;
}

/** The cases of a golden file, each once, in its order. */
std::vector<std::string> casesOf(const fs::path& golden) {
    std::vector<std::string> cases;
    for (const std::string& line : readLines(golden)) {
        if (line.compare(0, 3, "== ") != 0)
            continue;
        std::string name = line.substr(3, line.find(": ") - 3);
        if (cases.empty() || cases.back() != name)
            cases.push_back(name);
    }
    return cases;
}

std::vector<std::string> suitesOf(const fs::path& program, const fs::path& out) {
    fs::path file = out / "suites.txt";
    std::string line = "'" + program.string() + "' --gtest_list_tests > '" + file.string() + "'";
    std::vector<std::string> suites;
    if (system(line.c_str()) != 0)
        throw std::runtime_error(program.string() + " does not list its tests");
    for (const std::string& text : readLines(file)) {
        size_t point = text.find('.');
        if (!text.empty() && text[0] != ' ' && point != text.npos)
            suites.push_back(text.substr(0, point));
    }
    return suites;
}

/** The tests of a Python script, "Class.test_method". */
std::vector<std::string> testsOf(const fs::path& script) {
    std::vector<std::string> tests;
    std::string group;
    for (const std::string& line : readLines(script)) {
        constexpr size_t classWord = 6;
        constexpr size_t methodWord = 8;
        if (line.compare(0, classWord, "class ") == 0)
            group = line.substr(classWord, line.find_first_of("(:") - classWord);
        else if (line.compare(0, methodWord + 5, "    def test_") == 0)
            tests.push_back(group + "." + line.substr(methodWord, line.find('(') - methodWord));
    }
    return tests;
}

void listJudges(const Options& options, const Builder& builder, Work* work) {
    const fs::path source = fs::canonical(options.source);
    const fs::path build = fs::canonical(options.build);
    const fs::path bench = fs::absolute(options.out) / "bench";
    std::string layOut = "'" + (source / "tools/torture_bench.sh").string() + "' '" +
                         build.string() + "' '" + bench.string() + "' > /dev/null";
    if (!work->scope->golden.empty() && system(layOut.c_str()) != 0)
        throw std::runtime_error("cannot lay out " + bench.string());
    for (const char* module : work->scope->golden) {
        for (const std::string& name :
             casesOf(source / "tests/golden/calls" / (std::string(module) + ".txt")))
            work->judges.push_back(
                {"golden " + name,
                 name,
                 "goldencalls",
                 {"{bin}/goldencalls", "--dir", bench, "--golden", source / "tests/golden/calls",
                  "--operators", source / "tests/golden/operator", "--module", module, "--name",
                  name, "--jobs", "1"},
                 0,
                 {}});
    }
    for (const SuitePrograms& suites : work->scope->suites) {
        for (const std::string& suite : suitesOf(builder.bin() / suites.program, work->out)) {
            if (std::none_of(suites.patterns.begin(), suites.patterns.end(),
                             [&](auto* p) { return fnmatch(p, suite.c_str(), 0) == 0; }))
                continue;
            Words words = {std::string("{bin}/") + suites.program, "--gtest_filter=" + suite + ".*",
                           "--gtest_fail_fast", "--gtest_brief=1"};
            if (suites.isVirtual)
                words.insert(words.begin(), "{bin}/vclock/run");
            work->judges.push_back(
                {std::string(suites.program) + " " + suite, suite, suites.program, words, 0, {}});
        }
    }
    for (const char* script : work->scope->scripts) {
        for (const std::string& test :
             testsOf(source / "tests/scenario" / (std::string(script) + ".py")))
            work->judges.push_back(
                {std::string(script) + " " + test,
                 test,
                 "",
                 {"/usr/bin/python3", std::string("tests/scenario/") + script + ".py", test},
                 0,
                 {}});
    }
}

/** Does `each` for the numbers below `count`, on all workers. */
void inParallel(unsigned jobs, size_t count,
                const std::function<void(unsigned worker, size_t number)>& each) {
    std::atomic<size_t> next{0};
    std::vector<std::thread> threads;
    for (unsigned worker = 0; worker < jobs; worker++) {
        threads.emplace_back([&, worker] {
            for (size_t number; (number = next++) < count;)
                each(worker, number);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

Room roomOf(const Options& options, const Work& work, const fs::path& bin, unsigned worker) {
    return {fs::canonical(options.source), bin,
            fs::absolute(work.out) / ("room" + std::to_string(worker))};
}

/** Runs all judges without a mutant: they must be content. Notes which points each passes. */
bool measureReach(const Options& options, const Builder& builder, Work* work) {
    std::atomic<bool> good{true};
    size_t points = pointCount(work->places);
    constexpr double patience = 300;
    inParallel(options.jobs, work->judges.size(), [&](unsigned worker, size_t number) {
        Judge& judge = work->judges[number];
        Room room = roomOf(options, *work, builder.bin(), worker);
        fs::path reach = room.scratch / "reach";
        fs::create_directories(room.scratch);
        std::ofstream(reach, std::ios::binary) << std::string(points, '\0');
        Outcome outcome = runJudge(judge, room, 0, reach, patience);
        if (outcome.status != 0 || outcome.late) {
            good = false;
            fprintf(stderr, "mutate: %s fails without a mutant:\n%s\n", judge.name.c_str(),
                    outcome.text.c_str());
        }
        judge.seconds = outcome.seconds;
        std::string bytes = readText(reach);
        judge.reached.resize(points);
        for (size_t i = 0; i < bytes.size() && i < points; i++)
            judge.reached[i] = bytes[i] != 0;
    });
    return good;
}

/** The points that tell that a variable of the program is used, through other variables too. */
void readersOf(const Places& places, const std::string& variable, std::set<std::string>* seen,
               std::set<unsigned>* points) {
    if (!seen->insert(variable).second)
        return;
    auto readers = places.readers.find(variable);
    if (readers != places.readers.end())
        points->insert(readers->second.begin(), readers->second.end());
    auto holders = places.holders.find(variable);
    if (holders == places.holders.end())
        return;
    for (const std::string& holder : holders->second)
        readersOf(places, holder, seen, points);
}

/** The judges that can notice a mutant, the quickest and most promising first. */
std::vector<const Judge*> judgesOf(const Work& work, const Mutant& mutant,
                                   const std::string& last) {
    std::set<unsigned> points;
    if (!mutant.constant && mutant.variable.empty()) {
        points.insert(mutant.id);
    } else {
        std::set<std::string> seen;
        if (!mutant.variable.empty())
            readersOf(work.places, mutant.variable, &seen, &points);
        if (mutant.entry != 0)
            points.insert(mutant.entry);
    }
    std::vector<const Judge*> chosen;
    for (const Judge& judge : work.judges) {
        bool reaches = points.empty() || std::any_of(points.begin(), points.end(), [&](unsigned p) {
                           return p < judge.reached.size() && judge.reached[p];
                       });
        if (reaches || judge.name == last)
            chosen.push_back(&judge);
    }
    auto rank = [&](const Judge* judge) {
        bool named = !mutant.row.empty() && mutant.row.find(judge->subject) != mutant.row.npos;
        return judge->name == last ? -2.0 : named ? -1.0 : judge->seconds;
    };
    std::stable_sort(chosen.begin(), chosen.end(),
                     [&](const Judge* a, const Judge* b) { return rank(a) < rank(b); });
    return chosen;
}

/** Runs what can notice a mutant until something does. */
Result judgeMutant(const Options& options, const Builder& builder, const Work& work,
                   const Mutant& mutant, unsigned worker, const std::string& last) {
    fs::path own = fs::absolute(work.out) / ("own" + std::to_string(worker));
    fs::path bin = builder.bin();
    if (mutant.constant) {
        bin = own;
        switch (builder.buildOne(work.places, mutant, own)) {
            case Builder::REFUSED_BY_ASSERTION:
                return {Verdict::FOUND, "static_assert"};
            case Builder::NO_PROGRAM:
                return {Verdict::NO_PROGRAM, ""};
            case Builder::BUILT:
                break;
        }
    } else if (!mutant.variable.empty() &&
               builder.compileOne(work.places, mutant, own.string() + ".units") ==
                   Builder::REFUSED_BY_ASSERTION) {
        return {Verdict::FOUND, "static_assert"};
    }
    Room room = roomOf(options, work, bin, worker);
    std::vector<const Judge*> judges = judgesOf(work, mutant, last);
    std::set<std::string> linked;
    for (const Judge* judge : judges) {
        for (const std::string& program : work.programs) {
            bool needed =
                judge->program.empty() || judge->program == program || program == "libQlx.so";
            if (mutant.constant && needed && linked.insert(program).second)
                builder.linkOne(work.places, mutant, program, own);
        }
        // Generous, and a second time more so: the machine may have other work. What fails has to
        // fail again, so that no chance counts as found.
        double limit = 10 + 20 * judge->seconds;
        unsigned id = mutant.constant ? 0 : mutant.id;
        Outcome outcome = runJudge(*judge, room, id, "", limit);
        if (outcome.late || outcome.status != 0)
            outcome = runJudge(*judge, room, id, "", 3 * limit);
        if (outcome.late || outcome.status != 0)
            return {Verdict::FOUND, judge->name};
    }
    return {Verdict::SURVIVED, judges.empty() ? "not reached" : ""};
}

std::string allOf(const fs::path& path) {
    std::string text;
    std::vector<fs::path> files;
    if (!fs::is_directory(path))
        return readText(path);
    for (const auto& entry : fs::recursive_directory_iterator(path)) {
        if (entry.is_regular_file())
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files)
        text += file.string() + "\n" + readText(file);
    return text;
}

/** What results depend on: the programs, the mutants' texts, and the data of the judges. */
std::string basisOf(const Options& options, const Work& work) {
    std::string text;
    for (const Unit& unit : work.places.units)
        text += contentKey(unit.text);
    for (const std::string& program : work.programs)
        text += contentKey(readText(options.build / program));
    for (const char* file : {"libQlx.so", "zktest", "zkbench"})
        text += contentKey(readText(options.build / file));
    for (const char* folder : {"vclock"})
        text += contentKey(allOf(options.build / folder));
    for (const char* folder : {"config", "tests/golden/operator", "tests/scenario"})
        text += contentKey(allOf(options.source / folder));
    for (const char* module : work.scope->golden)
        text += contentKey(
            readText(options.source / "tests/golden/calls" / (std::string(module) + ".txt")));
    return contentKey(text);
}

void loadKnown(const Options& options, Work* work) {
    for (const std::string& line : readLines(work->out / "results.txt")) {
        std::istringstream in(line);
        Known known;
        std::string key;
        std::getline(in, key, '\t');
        std::getline(in, known.basis, '\t');
        std::getline(in, known.verdict, '\t');
        std::getline(in, known.by, '\t');
        if (options.afresh)
            known.basis.clear();
        work->known[key] = known;
    }
}

void saveKnown(const Work& work) {
    std::ofstream file(work.out / "results.txt");
    for (const auto& entry : work.known)
        file << entry.first << '\t' << entry.second.basis << '\t' << entry.second.verdict << '\t'
             << entry.second.by << '\n';
}

/** The reviewed reasons: a mutant's name, and indented below it why it may live. */
bool loadReasons(const Options& options, Work* work) {
    fs::path path = options.source / "tests/mutants" / (std::string(work->scope->name) + ".txt");
    std::vector<std::string> waiting;
    bool good = true;
    bool told = false;
    for (const std::string& line : readLines(path)) {
        if (line.empty() || line[0] == '#')
            continue;
        if (line[0] == ' ') {
            told = true;
            for (const std::string& key : waiting)
                work->reasons[key] += line;
        } else {
            if (told)
                waiting.clear();
            told = false;
            waiting.push_back(line);
            work->reasons[line];
        }
    }
    for (const auto& reason : work->reasons) {
        if (!reason.second.empty())
            continue;
        fprintf(stderr, "mutate: %s: no reason stands below '%s'\n", path.c_str(),
                reason.first.c_str());
        good = false;
    }
    return good;
}

/** The mutants to judge: those whose name fits, or of these a sample that the seed decides. */
std::vector<const Mutant*> choose(const Options& options, const Work& work) {
    std::vector<std::pair<std::string, const Mutant*>> all;
    std::string seed = std::to_string(options.seed) + " ";
    for (const Mutant& mutant : work.places.mutants) {
        if (fnmatch(options.pattern.c_str(), mutant.key.c_str(), 0) == 0)
            all.push_back({contentKey(seed + mutant.key), &mutant});
    }
    if (options.sample > 0 && options.sample < all.size()) {
        std::sort(all.begin(), all.end(),
                  [](const auto& a, const auto& b) { return a.first < b.first; });
        all.resize(options.sample);
    }
    std::vector<const Mutant*> chosen;
    for (const auto& one : all)
        chosen.push_back(one.second);
    return chosen;
}

const char* const verdictWords[] = {"found", "survived", "excused", "no program"};

Verdict verdictOf(const std::string& word) {
    return word == "found"        ? Verdict::FOUND
           : word == "no program" ? Verdict::NO_PROGRAM
                                  : Verdict::SURVIVED;
}

/** Prints a module's score and its survivors. True when each survivor has its reason, and each
 *  reason a survivor. */
bool tell(const Work& work, const std::vector<const Mutant*>& chosen,
          const std::vector<Result>& results) {
    size_t count[4] = {};
    bool good = true;
    std::map<std::string, bool> used;
    for (size_t i = 0; i < chosen.size(); i++) {
        const Mutant& mutant = *chosen[i];
        Verdict verdict = results[i].verdict;
        auto reason = work.reasons.find(mutant.key);
        if (verdict == Verdict::SURVIVED && reason != work.reasons.end())
            verdict = Verdict::EXCUSED;
        else if (reason != work.reasons.end() && verdict == Verdict::FOUND) {
            printf("%s: a reason stands for what %s finds: %s\n", work.scope->name,
                   results[i].by.c_str(), mutant.key.c_str());
            good = false;
        }
        count[static_cast<size_t>(verdict)]++;
        if (verdict == Verdict::SURVIVED) {
            printf("%s:%u: %s%s%s\n", mutant.file.c_str(), mutant.line, mutant.key.c_str(),
                   results[i].by.empty() ? "" : ": ", results[i].by.c_str());
            good = false;
        }
    }
    std::set<std::string> names;
    for (const Mutant& mutant : work.places.mutants)
        names.insert(mutant.key);
    for (const auto& reason : work.reasons) {
        if (names.count(reason.first) == 0) {
            printf("%s: a reason stands for no mutant: %s\n", work.scope->name,
                   reason.first.c_str());
            good = false;
        }
    }
    size_t judged = chosen.size() - count[3];
    printf(
        "%-16s %6zu mutants, %5zu judged: %5zu found (%.1f %%), %4zu survive with a reason, "
        "%4zu without\n",
        work.scope->name, work.places.mutants.size(), judged, count[0],
        judged > 0 ? 100.0 * static_cast<double>(count[0]) / static_cast<double>(judged) : 0.0,
        count[2], count[1]);
    fflush(stdout);
    return good;
}

bool runScope(const Options& options, const Scope& scope) {
    Work work = {&scope, fs::absolute(options.out) / scope.name, {}, {}, programsOf(scope), "", {},
                 {}};
    fs::create_directories(work.out);
    Builder builder(options.source, options.build, work.out);
    std::vector<CompileCommand> sources;
    for (const CompileCommand& command : builder.commands()) {
        if (isOf(options, scope, command.source))
            sources.push_back(command);
    }
    if (sources.empty())
        throw std::runtime_error(std::string("the build has no source of ") + scope.name);
    work.places =
        builder.find(sources, [&](const std::string& file) { return isOf(options, scope, file); });
    std::vector<const Mutant*> chosen = choose(options, work);
    if (options.list) {
        for (const Mutant* mutant : chosen)
            printf("%s:%u: %s\n", mutant->file.c_str(), mutant->line, mutant->key.c_str());
        return true;
    }
    if (!loadReasons(options, &work))
        return false;
    loadKnown(options, &work);
    work.basis = basisOf(options, work);
    bool allKnown = std::all_of(chosen.begin(), chosen.end(), [&](const Mutant* mutant) {
        auto known = work.known.find(mutant->key);
        return known != work.known.end() && known->second.basis == work.basis;
    });
    if (!allKnown) {
        builder.buildAll(&work.places, work.programs);
        listJudges(options, builder, &work);
        if (!measureReach(options, builder, &work))
            return false;
    }
    std::vector<Result> results(chosen.size());
    std::mutex lock;
    inParallel(options.jobs, chosen.size(), [&](unsigned worker, size_t number) {
        const Mutant& mutant = *chosen[number];
        Known known;
        {
            std::lock_guard<std::mutex> hold(lock);
            auto found = work.known.find(mutant.key);
            known = found != work.known.end() ? found->second : Known{};
        }
        if (known.basis == work.basis) {
            results[number] = {verdictOf(known.verdict), known.by};
            return;
        }
        Result result = judgeMutant(options, builder, work, mutant, worker, known.by);
        results[number] = result;
        std::lock_guard<std::mutex> hold(lock);
        work.known[mutant.key] = {work.basis, verdictWords[static_cast<size_t>(result.verdict)],
                                  result.by};
        saveKnown(work);
    });
    return tell(work, chosen, results);
}

int parse(int argc, char** argv, Options* options) {
    CLI::App app(
        "Changes the sources of a module one place at a time, and shows what no test "
        "notices.\nThe exit code is 0 when each survivor has its reviewed reason.",
        "mutate");
    std::vector<std::string> names;
    for (const Scope& scope : scopes())
        names.push_back(scope.name);
    options->jobs = std::max(1u, std::thread::hardware_concurrency());
    app.add_option("--module", options->modules, "Only this module; may be repeated")
        ->check(CLI::IsMember(names))
        ->type_name("NAME");
    app.add_option("--name", options->pattern, "Only mutants whose name matches")
        ->type_name("PATTERN");
    app.add_option("--sample", options->sample, "Only so many of each module")->type_name("N");
    app.add_option("--seed", options->seed, "Decides which (1)")->type_name("N");
    app.add_option("--source", options->source, "The tree (.)")->type_name("DIR");
    app.add_option("--build", options->build, "Its build (build/debug)")->type_name("DIR");
    app.add_option("--out", options->out, "Results and mutated programs (build/mutants)")
        ->type_name("DIR");
    app.add_option("--jobs", options->jobs, "Workers at a time")->check(wholeNumber(1, 1024));
    app.add_flag("--list", options->list, "Only list the mutants");
    app.add_flag("--afresh", options->afresh, "Judge anew what is known");
    return readOptions(&app, argc, argv);
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    int answer = parse(argc, argv, &options);
    if (answer >= 0)
        return answer;
    bool good = true;
    try {
        for (const Scope& scope : scopes()) {
            if (options.modules.empty() || std::find(options.modules.begin(), options.modules.end(),
                                                     scope.name) != options.modules.end())
                good = runScope(options, scope) && good;
        }
    } catch (const std::exception& error) {
        fprintf(stderr, "mutate: %s\n", error.what());
        return EXIT_FAILED;
    }
    return good ? EXIT_DONE : EXIT_FAILED;
}
