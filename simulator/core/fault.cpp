#include "simulator/core/fault.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <mutex>

#include "simulator/core/sim.h"
#include "simulator/core/words.h"

// The program's own word on which case runs, where it offers one.
extern "C" __attribute__((weak)) const char* volatile zk_currentCaseName;

namespace sim {

struct Fault {
    std::string name;
    std::string caseName;
    std::string argument;
    unsigned nth = 0;
    bool onward = false;
    unsigned seen = 0;
    FaultEffect effect;
};

struct Faults {
    std::mutex mutex;
    std::vector<Fault> list;
    unsigned acted = 0;
    bool fileLoaded = false;
};

static Faults& faults() {
    static Faults* instance = new Faults;
    return *instance;
}

/** "corrupt=OFFSET:XX". */
static bool parseCorruption(const std::string& value, FaultEffect* effect) {
    std::string place, digits;
    int64_t offset = 0, byte = 0;
    if (!partWord(value, ':', &place, &digits) || !readNumber(place, 0, INT64_MAX, &offset) ||
        !readNumber(digits, 0, 0xff, &byte, 16))
        return false;
    effect->corruptions.push_back({static_cast<size_t>(offset), static_cast<uint8_t>(byte)});
    return true;
}

/** "flip=MEMBER", "zero=MEMBER", "set=MEMBER:VALUE", "add=MEMBER:NUMBER". */
static bool parseMemberChange(const std::string& key, const std::string& value,
                              FaultEffect* effect) {
    using Change = FaultEffect::MemberChange;
    Change change = {Change::flip, value, ""};
    if (key == "zero")
        change.kind = Change::zero;
    if (key == "set" || key == "add") {
        change.kind = key == "set" ? Change::set : Change::add;
        if (!partWord(value, ':', &change.path, &change.word))
            return false;
    }
    effect->members.push_back(change);
    return !change.path.empty();
}

/** "call=N", "call=N+". */
static bool parseCall(std::string value, Fault* fault) {
    fault->onward = !value.empty() && value.back() == '+';
    if (fault->onward)
        value.pop_back();
    int64_t number = 0;
    if (!readNumber(value, 1, UINT32_MAX, &number))
        return false;
    fault->nth = static_cast<unsigned>(number);
    return true;
}

/** A word without a value. */
static bool parseFlag(const std::string& word, FaultEffect* effect) {
    const struct {
        const char* word;
        bool FaultEffect::*flag;
    } flags[] = {
        {"hang", &FaultEffect::hang},   {"kill", &FaultEffect::kill},
        {"drop", &FaultEffect::drop},   {"scramble", &FaultEffect::scramble},
        {"blank", &FaultEffect::blank},
    };
    for (const auto& one : flags) {
        if (word != one.word)
            continue;
        effect->*one.flag = true;
        return true;
    }
    return false;
}

/** Takes one word behind the function's name; false when it is none. */
static bool parseWord(const std::string& word, Fault* fault) {
    std::string key, value;
    FaultEffect& effect = fault->effect;
    if (!partWord(word, '=', &key, &value))
        return parseFlag(word, &effect);
    if (key == "case" || key == "with") {
        (key == "case" ? fault->caseName : fault->argument) = value;
        return !value.empty();
    }
    if (key == "call")
        return parseCall(value, fault);
    if (key == "corrupt")
        return parseCorruption(value, &effect);
    if (key == "flip" || key == "zero" || key == "set" || key == "add")
        return parseMemberChange(key, value, &effect);
    int64_t number = 0;
    if (key == "return" && readNumber(value, INT32_MIN, UINT32_MAX, &number)) {
        effect.refuse = true;
        effect.code = static_cast<int32_t>(number);
        return true;
    }
    if (key == "delay")
        return readNumber(value, 0, INT64_MAX, &effect.delayMs);
    bool good = key == "repeat" && readNumber(value, 0, 1000, &number);
    effect.repeat = static_cast<int>(number);
    return good;
}

bool addFault(const std::string& line, std::string* error) {
    Words words(line);
    Fault fault;
    words.next(&fault.name);
    int actions = 0;
    for (std::string word; words.next(&word);) {
        if (!parseWord(word, &fault)) {
            *error = "cannot read '" + word + "' in the fault '" + line + "'";
            return false;
        }
        std::string key = word.substr(0, word.find('='));
        actions += key != "case" && key != "with" && key != "call";
    }
    if (actions == 0) {
        *error = "no action in the fault '" + line + "'";
        return false;
    }
    std::lock_guard<std::mutex> lock(faults().mutex);
    faults().list.push_back(fault);
    return true;
}

void loadFaultFile() {
    Faults& f = faults();
    {
        std::lock_guard<std::mutex> lock(f.mutex);
        if (f.fileLoaded)
            return;
        f.fileLoaded = true;
    }
    const char* path = getenv("QLX_SIM_FAULTS");
    if (path == nullptr)
        return;
    std::ifstream file(path);
    if (!file)
        complain("cannot read the fault file %s", path);
    for (std::string line; std::getline(file, line);) {
        std::string error;
        bool blank = line.find_first_not_of(" \t\r") == std::string::npos;
        if (!blank && line[0] != '#' && !addFault(line, &error))
            complain("%s: %s", path, error.c_str());
    }
}

void clearFaults() {
    std::lock_guard<std::mutex> lock(faults().mutex);
    faults().list.clear();
    faults().acted = 0;
}

unsigned faultsActed() {
    std::lock_guard<std::mutex> lock(faults().mutex);
    return faults().acted;
}

static bool caseMatches(const Fault& fault) {
    if (fault.caseName.empty())
        return true;
    if (&zk_currentCaseName == nullptr)
        return false;
    const char* name = zk_currentCaseName;
    return name != nullptr && fault.caseName == name;
}

/** Whether one of the words of the arguments is the one that the fault wants. */
static bool argumentMatches(const Fault& fault, const std::string& arguments) {
    if (fault.argument.empty())
        return true;
    Words words(arguments);
    for (std::string word; words.next(&word);) {
        if (word == fault.argument)
            return true;
    }
    return false;
}

bool faultsReadArguments() {
    std::lock_guard<std::mutex> lock(faults().mutex);
    const std::vector<Fault>& list = faults().list;
    return std::any_of(list.begin(), list.end(),
                       [](const Fault& fault) { return !fault.argument.empty(); });
}

FaultEffect faultsOn(const char* name, const std::string& arguments) {
    FaultEffect all;
    Faults& f = faults();
    std::lock_guard<std::mutex> lock(f.mutex);
    for (Fault& fault : f.list) {
        if (fault.name != name || !caseMatches(fault) || !argumentMatches(fault, arguments))
            continue;
        fault.seen++;
        bool acts =
            fault.nth == 0 || fault.seen == fault.nth || (fault.onward && fault.seen > fault.nth);
        if (!acts)
            continue;
        f.acted++;
        const FaultEffect& one = fault.effect;
        all.delayMs += one.delayMs;
        if (one.refuse) {
            all.refuse = true;
            all.code = one.code;
        }
        all.hang = all.hang || one.hang;
        all.kill = all.kill || one.kill;
        all.drop = all.drop || one.drop;
        all.scramble = all.scramble || one.scramble;
        all.blank = all.blank || one.blank;
        all.repeat += one.repeat;
        all.corruptions.insert(all.corruptions.end(), one.corruptions.begin(),
                               one.corruptions.end());
        all.members.insert(all.members.end(), one.members.begin(), one.members.end());
    }
    return all;
}

/** Scrambles or blanks all bytes, then exchanges single ones that lie within. */
static void corruptBytes(const FaultEffect& effect, uint8_t* bytes, size_t size) {
    for (size_t i = 0; effect.scramble && i < size; i++)
        bytes[i] ^= 0x55;
    if (effect.blank)
        memset(bytes, 0, size);
    for (const FaultEffect::Corruption& change : effect.corruptions) {
        if (change.offset < size)
            bytes[change.offset] = change.value;
    }
}

static bool changeMember(const FaultEffect::MemberChange& change, const Place& place) {
    if (change.kind == FaultEffect::MemberChange::flip)
        return flipMember(place);
    if (change.kind == FaultEffect::MemberChange::set)
        return setMember(place, change.word);
    if (change.kind == FaultEffect::MemberChange::add)
        return addToMember(place, change.word);
    zeroMember(place);
    return true;
}

void corrupt(const FaultEffect& effect, const char* name, const std::vector<Value>& values) {
    for (const Value& value : values) {
        if (value.data != nullptr && !value.marked)
            corruptBytes(effect, static_cast<uint8_t*>(value.data), value.size());
    }
    for (const FaultEffect::MemberChange& change : effect.members) {
        Place place;
        bool found = std::any_of(values.begin(), values.end(), [&](const Value& value) {
            return findMember(value, change.path, &place);
        });
        if (!found)
            complain("%s hands out no '%s' for the fault", name, change.path.c_str());
        else if (!changeMember(change, place))
            complain("the '%s' that %s hands out cannot be made so", change.path.c_str(), name);
    }
}

void hangForever() {
    // A wait that nobody ends, instead of pause(): it counts as waiting in virtual time too.
    static std::mutex* mutex = new std::mutex;
    static std::condition_variable* never = new std::condition_variable;
    std::unique_lock<std::mutex> lock(*mutex);
    for (;;)
        never->wait(lock);
}

void dieAtOnce() {
    kill(getpid(), SIGKILL);
    abort();
}

}  // namespace sim
