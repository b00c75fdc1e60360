#include "tools/golden/blocks.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <map>
#include <sstream>

#include "tools/golden/shape.h"

namespace {

/** A symbol of the records while blocks are sought: a line's shape, or lines that stand together.
 */
struct Symbol {
    std::vector<unsigned> shapes;
};

/** One occurrence: its symbol, and the values of its lines. */
struct Place {
    unsigned symbol;
    std::vector<std::string> values;
};

using Sequence = std::vector<Place>;
using Pair = std::pair<unsigned, unsigned>;

class BlockMaker {
 public:
    explicit BlockMaker(const Records& records) {
        std::map<std::string, unsigned> known;
        for (const auto& record : records) {
            Sequence sequence;
            // The verdict stands with the title.
            for (size_t i = 1; i < record.second.size(); i++) {
                Shape shape = shapeOf(record.second[i]);
                auto added = known.emplace(shape.text, symbols_.size());
                if (added.second) {
                    shapes_.push_back(shape.text);
                    symbols_.push_back({{added.first->second}});
                }
                sequence.push_back({added.first->second, shape.values});
            }
            sequences_.push_back(std::move(sequence));
        }
    }

    /** Joins lines that mostly stand together, as long as there are any. */
    void join() {
        for (Pair pair; next(&pair);)
            replace(pair);
    }

    void write(const Records& records, std::ostream& out) {
        nameBlocks();
        for (unsigned symbol : order_)
            writeBlock(symbol, out);
        for (size_t r = 0; r < records.size(); r++) {
            out << "== " << records[r].first << "\n";
            if (!records[r].second.empty())
                out << "  " << records[r].second[0] << "\n";
            for (const Place& place : sequences_[r])
                writePlace(place, out);
        }
    }

 private:
    static constexpr size_t fewestUses = 3;
    static constexpr size_t fewestLines = 2;
    static constexpr size_t longLine = 120;

    /** The pair that is joined next: of those that qualify the most frequent, the first of equal
     *  ones. */
    bool next(Pair* best) const {
        std::map<Pair, size_t> pairs;
        std::vector<size_t> count(symbols_.size());
        for (const Sequence& sequence : sequences_) {
            for (size_t i = 0; i < sequence.size(); i++) {
                count[sequence[i].symbol]++;
                if (i > 0 && sequence[i - 1].symbol != sequence[i].symbol)
                    pairs[{sequence[i - 1].symbol, sequence[i].symbol}]++;
            }
        }
        size_t most = 0;
        for (const auto& entry : pairs) {
            size_t a = count[entry.first.first];
            size_t b = count[entry.first.second];
            bool together = 2 * entry.second >= std::max(a, b);
            // A line of its own, like an empty one, may stand elsewhere too.
            bool swallows = (entry.second == a && isLine(entry.first.second)) ||
                            (entry.second == b && isLine(entry.first.first));
            if (entry.second >= fewestUses && entry.second > most && (together || swallows)) {
                most = entry.second;
                *best = entry.first;
            }
        }
        return most > 0;
    }

    /** Whether a reader is better off with a name. */
    bool isLong(unsigned symbol) const {
        const std::vector<unsigned>& shapes = symbols_[symbol].shapes;
        return shapes.size() >= fewestLines ||
               std::any_of(shapes.begin(), shapes.end(),
                           [this](unsigned shape) { return shapes_[shape].size() >= longLine; });
    }

    bool isLine(unsigned symbol) const {
        return symbols_[symbol].shapes.size() == 1;
    }

    void replace(Pair pair) {
        unsigned joined = static_cast<unsigned>(symbols_.size());
        Symbol symbol = symbols_[pair.first];
        const std::vector<unsigned>& behind = symbols_[pair.second].shapes;
        symbol.shapes.insert(symbol.shapes.end(), behind.begin(), behind.end());
        symbols_.push_back(symbol);
        for (Sequence& sequence : sequences_) {
            Sequence out;
            for (Place& place : sequence) {
                if (!out.empty() && out.back().symbol == pair.first &&
                    place.symbol == pair.second) {
                    out.back().symbol = joined;
                    out.back().values.insert(out.back().values.end(), place.values.begin(),
                                             place.values.end());
                } else {
                    out.push_back(std::move(place));
                }
            }
            sequence.swap(out);
        }
    }

    /** Names blocks by their first library call, and finds which of their values differ. */
    void nameBlocks() {
        std::map<unsigned, size_t> uses;
        std::map<std::string, unsigned> taken;
        for (const Sequence& sequence : sequences_) {
            for (const Place& place : sequence) {
                if (uses[place.symbol]++ == 0)
                    order_.push_back(place.symbol);
            }
        }
        order_.erase(std::remove_if(order_.begin(), order_.end(),
                                    [&](unsigned symbol) {
                                        return uses[symbol] < fewestUses || !isLong(symbol);
                                    }),
                     order_.end());
        for (unsigned symbol : order_) {
            std::string name = wordOf(symbols_[symbol]);
            unsigned number = ++taken[name];
            names_[symbol] = "@" + name + (number > 1 ? "-" + std::to_string(number) : "");
        }
        for (const Sequence& sequence : sequences_) {
            for (const Place& place : sequence) {
                if (names_.count(place.symbol) == 0)
                    continue;
                std::vector<std::vector<std::string>>& columns = columns_[place.symbol];
                columns.resize(place.values.size());
                for (size_t v = 0; v < place.values.size(); v++)
                    columns[v].push_back(place.values[v]);
            }
        }
        for (const auto& block : columns_)
            nameArguments(block.first);
    }

    /** Values that differ from use to use are arguments; those that never differ from one another
     *  are one. */
    void nameArguments(unsigned symbol) {
        std::map<std::vector<std::string>, unsigned> known;
        const std::vector<std::vector<std::string>>& columns = columns_[symbol];
        for (size_t v = 0; v < columns.size(); v++) {
            bool same = std::all_of(columns[v].begin(), columns[v].end(),
                                    [&](const std::string& s) { return s == columns[v][0]; });
            unsigned next = static_cast<unsigned>(known.size()) + 1;
            auto number = same ? known.end() : known.emplace(columns[v], next).first;
            argument_[symbol].push_back(same ? 0 : number->second);
        }
    }

    std::string wordOf(const Symbol& symbol) const {
        for (unsigned shape : symbol.shapes) {
            size_t at = shapes_[shape].find("QLX_");
            if (at == std::string::npos)
                continue;
            size_t end = at += 4;
            while (end < shapes_[shape].size() &&
                   isalnum(static_cast<unsigned char>(shapes_[shape][end])) != 0)
                end++;
            return shapes_[shape].substr(at, end - at);
        }
        return "Text";
    }

    /** The lines of an occurrence, each value by `valueOf` its number. In a block "$" begins an
     *  argument, and "$$" stands for itself. */
    template <typename ValueOf>
    void writeLines(unsigned symbol, bool inBlock, ValueOf valueOf, std::ostream& out) const {
        size_t value = 0;
        for (unsigned shape : symbols_[symbol].shapes) {
            out << "  ";
            for (char c : shapes_[shape]) {
                if (c == valueSlot)
                    out << valueOf(value++);
                else
                    out << (c == '$' && inBlock ? "$$" : std::string(1, c));
            }
            out << "\n";
        }
    }

    void writeBlock(unsigned symbol, std::ostream& out) {
        const std::vector<unsigned>& argument = argument_[symbol];
        out << names_[symbol] << " =\n";
        writeLines(
            symbol, true,
            [&](size_t value) {
                return argument[value] == 0 ? columns_[symbol][value][0]
                                            : "$" + std::to_string(argument[value]);
            },
            out);
    }

    void writePlace(const Place& place, std::ostream& out) {
        if (names_.count(place.symbol) == 0) {
            writeLines(
                place.symbol, false, [&](size_t value) { return place.values[value]; }, out);
            return;
        }
        out << "  " << names_[place.symbol];
        unsigned told = 0;
        for (size_t v = 0; v < place.values.size(); v++) {
            if (argument_[place.symbol][v] != told + 1)
                continue;
            out << " " << place.values[v];
            told++;
        }
        out << "\n";
    }

    std::vector<std::string> shapes_;
    std::vector<Symbol> symbols_;
    std::vector<Sequence> sequences_;
    /** Symbols that are written as blocks, in the order of their first use. */
    std::vector<unsigned> order_;
    std::map<unsigned, std::string> names_;
    /** Of each block the values of its uses, and the argument that each is, 0 for none. */
    std::map<unsigned, std::vector<std::vector<std::string>>> columns_;
    std::map<unsigned, std::vector<unsigned>> argument_;
};

/** The values behind a block's name: words, a course in braces being one. */
std::vector<std::string> valuesOf(const std::string& text) {
    std::vector<std::string> values;
    int depth = 0;
    bool within = false;
    for (char c : text) {
        depth += c == '{' ? 1 : c == '}' ? -1 : 0;
        if (c == ' ' && depth == 0) {
            within = false;
            continue;
        }
        if (!within)
            values.emplace_back();
        within = true;
        values.back() += c;
    }
    return values;
}

/** A line of a block with its values put in; "$$" is a "$". */
std::string filled(const std::string& line, const std::vector<std::string>& values) {
    std::string out;
    for (size_t at = 0; at < line.size(); at++) {
        size_t end = at + 1;
        while (line[at] == '$' && end < line.size() && isdigit(line[end]) != 0)
            end++;
        size_t number = end > at + 1 ? std::stoul(line.substr(at + 1, end - at - 1)) : 0;
        if (line.compare(at, 2, "$$") == 0) {
            out += line[at++];
        } else if (number >= 1 && number <= values.size()) {
            out += values[number - 1];
            at = end - 1;
        } else {
            out += line[at];
        }
    }
    return out;
}

}  // namespace

bool readGolden(const std::filesystem::path& path, Records* records, std::string* error) {
    std::ifstream file(path);
    std::map<std::string, std::vector<std::string>> blocks;
    std::vector<std::string>* block = nullptr;
    unsigned number = 0;
    for (std::string line; std::getline(file, line);) {
        number++;
        size_t equals = line.rfind(" =");
        if (line.empty() || line[0] == '#') {
            continue;
        } else if (line.compare(0, 3, "== ") == 0) {
            records->push_back({line.substr(3), {}});
            block = nullptr;
        } else if (line[0] == '@' && equals != std::string::npos) {
            block = &blocks[line.substr(0, equals)];
        } else if (line.compare(0, 2, "  ") == 0 && block != nullptr) {
            block->push_back(line.substr(2));
        } else if (line.compare(0, 3, "  @") == 0 && !records->empty()) {
            size_t blank = std::min(line.find(' ', 2), line.size());
            auto found = blocks.find(line.substr(2, blank - 2));
            if (found == blocks.end()) {
                *error = path.string() + ":" + std::to_string(number) + ": no such block";
                return false;
            }
            for (const std::string& inner : found->second)
                records->back().second.push_back(filled(inner, valuesOf(line.substr(blank))));
        } else if (line.compare(0, 2, "  ") == 0 && !records->empty()) {
            records->back().second.push_back(line.substr(2));
        } else {
            *error = path.string() + ":" + std::to_string(number) + ": cannot read '" + line + "'";
            return false;
        }
    }
    return true;
}

bool writeGolden(const std::filesystem::path& path, const Records& records) {
    BlockMaker maker(records);
    maker.join();
    std::ostringstream text;
    maker.write(records, text);
    std::filesystem::path temporary = path.string() + ".new";
    {
        std::ofstream file(temporary);
        file << text.str();
        if (!file.flush())
            return false;
    }
    // What was written must read as what was meant.
    Records again;
    std::string error;
    if (!readGolden(temporary, &again, &error) || again != records)
        return false;
    std::filesystem::rename(temporary, path);
    return true;
}
