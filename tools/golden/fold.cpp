#include "tools/golden/fold.h"

#include <cstdio>
#include <cstdlib>
#include <map>

#include "tools/golden/shape.h"

namespace {

/** A line, or a folded group of lines: its text with a valueSlot in the place of each value. */
struct Item {
    std::string shape;
    std::vector<std::string> values;
    /** Number of the shape, to compare quickly. */
    unsigned id = 0;
};

Item itemOf(const std::string& line) {
    Shape shape = shapeOf(line);
    return {shape.text, shape.values, 0};
}

bool wholeNumber(const std::string& text, int64_t* value) {
    char* end = nullptr;
    *value = strtoll(text.c_str(), &end, 10);
    return !text.empty() && text.size() < 18 && *end == '\0';
}

/** Whether the values grow by one step; at least three, for two always do. */
bool evenSteps(const std::vector<std::string>& values, int64_t* step) {
    int64_t previous = 0;
    if (values.size() < 3 || !wholeNumber(values[0], &previous))
        return false;
    for (size_t i = 1; i < values.size(); i++) {
        int64_t value = 0;
        if (!wholeNumber(values[i], &value) || (i > 1 && value - previous != *step))
            return false;
        *step = value - previous;
        previous = value;
    }
    return true;
}

/** One value's course over the repetitions. */
std::string courseOf(const std::vector<std::string>& values) {
    constexpr size_t listed = 8;
    constexpr size_t listedLength = 60;
    bool same = true;
    std::string list;
    for (const std::string& value : values) {
        same = same && value == values[0];
        if (list.size() <= listedLength)
            list += (list.empty() ? "" : " ") + value;
    }
    int64_t step = 0;
    if (same)
        return values[0];
    if (evenSteps(values, &step))
        return "{" + values.front() + ".." + values.back() + "/" + std::to_string(step) + "}";
    if (values.size() <= listed && list.size() <= listedLength)
        return "{" + list + "}";
    char sum[16];
    snprintf(sum, sizeof sum, " #%08x", checksum(values));
    return "{" + values.front() + ".." + values.back() + sum + "}";
}

/** Lines of a shape, moved in by two blanks. */
std::string indented(const std::string& shape) {
    std::string out = "  ";
    for (char c : shape) {
        out += c;
        if (c == '\n')
            out += "  ";
    }
    return out;
}

/** `count` repetitions of `period` items, beginning at `first`, as one. */
Item folded(const std::vector<Item>& items, size_t first, size_t period, size_t count) {
    Item item;
    item.shape = std::string("x=") + valueSlot + " {";
    item.values.push_back(std::to_string(count));
    for (size_t i = 0; i < period; i++) {
        item.shape += "\n" + indented(items[first + i].shape);
        for (size_t v = 0; v < items[first + i].values.size(); v++) {
            std::vector<std::string> course;
            for (size_t k = 0; k < count; k++)
                course.push_back(items[first + i + k * period].values[v]);
            item.values.push_back(courseOf(course));
        }
    }
    item.shape += "\n}";
    return item;
}

class Folder {
 public:
    void add(Item item) {
        number(&item);
        items_.push_back(std::move(item));
    }

    /** Folds with one period; true when something was folded. */
    bool fold(size_t period) {
        std::vector<Item> out;
        bool any = false;
        for (size_t at = 0; at < items_.size();) {
            size_t count = repetitions(at, period);
            if (count >= 2 && count * period >= 3) {
                Item item = folded(items_, at, period, count);
                number(&item);
                out.push_back(std::move(item));
                at += count * period;
                any = true;
            } else {
                out.push_back(std::move(items_[at++]));
            }
        }
        items_.swap(out);
        return any;
    }

    size_t size() const {
        return items_.size();
    }

    std::vector<std::string> lines() const {
        std::vector<std::string> out;
        for (const Item& item : items_) {
            std::string line;
            size_t value = 0;
            for (char c : item.shape) {
                if (c == valueSlot) {
                    line += item.values[value++];
                } else if (c == '\n') {
                    out.push_back(line);
                    line.clear();
                } else {
                    line += c;
                }
            }
            out.push_back(line);
        }
        return out;
    }

 private:
    void number(Item* item) {
        unsigned next = static_cast<unsigned>(ids_.size()) + 1;
        item->id = ids_.emplace(item->shape, next).first->second;
    }

    /** How often the `period` items at `at` repeat in their shapes; 1 when they do not. */
    size_t repetitions(size_t at, size_t period) const {
        size_t end = at + period;
        while (end < items_.size() && items_[end].id == items_[end - period].id)
            end++;
        return end > items_.size() ? 1 : (end - at) / period;
    }

    std::vector<Item> items_;
    std::map<std::string, unsigned> ids_;
};

/** Beyond this many lines nobody reads a record. */
constexpr size_t longestRecord = 300;

/** A record without order enough to be folded, such as that of threads that meet by chance: its
 *  begin and end, and between them what was said how often, with a checksum of all of it. */
std::vector<std::string> summarised(const std::vector<std::string>& folded,
                                    const std::vector<std::string>& lines) {
    constexpr size_t kept = 60;
    std::vector<std::string> order;
    std::map<std::string, std::vector<std::vector<std::string>>> courses;
    for (const std::string& line : lines) {
        Shape shape = shapeOf(line);
        if (courses.count(shape.text) == 0)
            order.push_back(shape.text);
        std::vector<std::vector<std::string>>& values = courses[shape.text];
        values.resize(shape.values.size() + 1);
        values[0].push_back("1");
        for (size_t v = 0; v < shape.values.size(); v++)
            values[v + 1].push_back(shape.values[v]);
    }
    char sum[32];
    snprintf(sum, sizeof sum, "#%08x", checksum(lines));
    std::vector<std::string> out(folded.begin(), folded.begin() + kept);
    out.push_back("... in all, " + std::string(sum) + ":");
    for (const std::string& text : order) {
        const std::vector<std::vector<std::string>>& values = courses[text];
        std::string line = "  " + std::to_string(values[0].size()) + " times ";
        size_t v = 1;
        for (char c : text)
            line += c == valueSlot ? courseOf(values[v++]) : std::string(1, c);
        out.push_back(line);
    }
    out.push_back("... and in the end:");
    out.insert(out.end(), folded.end() - kept / 2, folded.end());
    return out;
}

}  // namespace

std::vector<std::string> foldLines(const std::vector<std::string>& lines) {
    constexpr size_t longestPeriod = 80;
    Folder folder;
    for (const std::string& line : lines)
        folder.add(itemOf(line));
    for (bool again = true; again;) {
        again = false;
        for (size_t period = 1; period <= longestPeriod && 2 * period <= folder.size(); period++)
            again = folder.fold(period) || again;
    }
    std::vector<std::string> out = folder.lines();
    return out.size() <= longestRecord ? out : summarised(out, lines);
}
