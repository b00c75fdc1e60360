#include "tools/mutate/schemata.h"

#include <algorithm>
#include <tuple>

namespace {

/** Where a constant expression is evaluated, the switch of a function is off. */
constexpr char head[] =
    "extern \"C\" bool zk_mutantIs(unsigned id);\n"
    "constexpr bool zk_mutant(unsigned id) {\n"
    "    return !__builtin_is_constant_evaluated() && zk_mutantIs(id);\n"
    "}\n";

/** What stands at one stretch: the variants of one kind. */
struct Edit {
    size_t begin;
    size_t end;
    /** Outer ones first where stretches are the same. */
    enum Kind { STATEMENT, DROPPED, EXPRESSION, BLANK, CONSTANT, ENTRY } kind;
    std::vector<std::pair<unsigned, const Replacement*>> variants;
    unsigned entry;
};

class Writer {
 public:
    Writer(const Unit& unit, std::vector<Edit> edits) : unit_(unit), edits_(std::move(edits)) {
        std::stable_sort(edits_.begin(), edits_.end(), [](const Edit& a, const Edit& b) {
            return std::make_tuple(a.begin, ~a.end, a.kind) <
                   std::make_tuple(b.begin, ~b.end, b.kind);
        });
    }

    Schemata write() {
        out_.text = head;
        stretch(0, unit_.text.size());
        return std::move(out_);
    }

 private:
    void copy(size_t begin, size_t end) {
        out_.text.append(unit_.text, begin, end - begin);
    }

    /** The stretch with all edits that begin in it. */
    void stretch(size_t begin, size_t end) {
        while (next_ < edits_.size() && edits_[next_].begin < end) {
            const Edit& edit = edits_[next_++];
            if (edit.begin < begin || edit.end > end)
                continue;
            copy(begin, edit.begin);
            put(edit);
            begin = edit.end;
        }
        copy(begin, end);
    }

    std::string test(unsigned id, const Replacement& part) {
        return (part.initialiser ? "zk_mutantIs(" : "zk_mutant(") + std::to_string(id) + ")";
    }

    void put(const Edit& edit) {
        Schemata::Group group = {out_.text.size(), 0, {}};
        switch (edit.kind) {
            case Edit::BLANK:
                out_.text += "static_assert(true, \"\")";
                return;
            case Edit::CONSTANT:
                out_.text += "const";
                return;
            case Edit::ENTRY:
                out_.text += "(void)zk_mutant(" + std::to_string(edit.entry) + ");";
                return;
            case Edit::STATEMENT:
                out_.text += "{ if (";
                for (const auto& variant : edit.variants)
                    out_.text += "!" + test(variant.first, *variant.second);
                out_.text += ") { ";
                stretch(edit.begin, edit.end);
                out_.text += " } }";
                break;
            case Edit::DROPPED:
                out_.text += "(" + test(edit.variants[0].first, *edit.variants[0].second) +
                             " ? (void)0 : (void)(";
                stretch(edit.begin, edit.end);
                out_.text += "))";
                break;
            case Edit::EXPRESSION:
                out_.text += "(";
                for (const auto& variant : edit.variants)
                    out_.text += test(variant.first, *variant.second) + " ? (" +
                                 variant.second->text + ") : ";
                out_.text += "(";
                stretch(edit.begin, edit.end);
                out_.text += "))";
                break;
        }
        group.end = out_.text.size();
        for (const auto& variant : edit.variants)
            group.ids.insert(variant.first);
        out_.groups.push_back(group);
    }

    const Unit& unit_;
    std::vector<Edit> edits_;
    size_t next_ = 0;
    Schemata out_;
};

}  // namespace

Schemata writeSchemata(const Places& places, size_t unit) {
    std::map<std::tuple<size_t, size_t, int>, Edit> edits;
    const Unit& text = places.units[unit];
    // Which variables lose their constancy: those with a switch in them.
    std::vector<size_t> switches;
    for (const Mutant& mutant : places.mutants) {
        auto found = mutant.replacements.find(unit);
        if (mutant.constant || found == mutant.replacements.end())
            continue;
        for (const Replacement& part : found->second) {
            Edit::Kind kind = part.statement ? Edit::STATEMENT
                              : part.dropped ? Edit::DROPPED
                                             : Edit::EXPRESSION;
            Edit& edit = edits[{part.begin, part.end, kind}];
            edit.begin = part.begin;
            edit.end = part.end;
            edit.kind = kind;
            edit.variants.push_back({mutant.id, &part});
            if (part.initialiser)
                switches.push_back(part.begin);
        }
    }
    std::sort(switches.begin(), switches.end());
    std::vector<Edit> all;
    for (auto& edit : edits)
        all.push_back(std::move(edit.second));
    for (const auto& entry : text.entries)
        all.push_back({entry.first, entry.first, Edit::ENTRY, {}, entry.second});
    for (size_t i = 0; i < text.constants.size(); i++) {
        size_t end = i + 1 < text.constants.size() ? text.constants[i + 1].first : text.text.size();
        size_t statement = text.text.find(';', text.constants[i].second);
        auto first = std::lower_bound(switches.begin(), switches.end(), text.constants[i].second);
        if (first != switches.end() && *first < std::min(end, statement))
            all.push_back(
                {text.constants[i].first, text.constants[i].second, Edit::CONSTANT, {}, 0});
    }
    for (const auto& assertion : text.assertions)
        all.push_back({assertion.first, assertion.second, Edit::BLANK, {}, 0});
    return Writer(text, std::move(all)).write();
}

std::string writeMutant(const Places& places, size_t unit, const Mutant& mutant) {
    std::string text = places.units[unit].text;
    auto found = mutant.replacements.find(unit);
    if (found == mutant.replacements.end())
        return text;
    std::vector<Replacement> parts = found->second;
    std::sort(parts.begin(), parts.end(),
              [](const Replacement& a, const Replacement& b) { return a.begin > b.begin; });
    for (const Replacement& part : parts)
        text.replace(part.begin, part.end - part.begin, part.text);
    return text;
}

std::set<unsigned> blamedAt(const Schemata& schemata, unsigned line, unsigned column) {
    const std::string& text = schemata.text;
    size_t at = 0;
    for (unsigned i = 1; i < line && at != text.npos; i++)
        at = text.find('\n', at) + 1;
    at += column - 1;
    const Schemata::Group* inner = nullptr;
    for (const Schemata::Group& group : schemata.groups) {
        bool around = group.begin <= at && at < group.end;
        if (around && (inner == nullptr || group.end - group.begin < inner->end - inner->begin))
            inner = &group;
    }
    if (inner != nullptr)
        return inner->ids;
    // The statement or declaration around.
    size_t begin = text.find_last_of(";{}", at);
    size_t end = std::min(text.find(';', at), text.size());
    std::set<unsigned> ids;
    for (const Schemata::Group& group : schemata.groups) {
        if (group.end > begin + 1 && group.begin < end)
            ids.insert(group.ids.begin(), group.ids.end());
    }
    return ids;
}
