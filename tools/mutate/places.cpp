#include "tools/mutate/places.h"

#include <clang-c/Index.h>
#include <ctype.h>
#include <stdlib.h>

#include <algorithm>

#include "tools/common/files.h"

namespace {

/** Functions' points have ids from here on, so that mutants can be numbered as they are found. */
constexpr unsigned firstEntry = 1u << 17;

std::string take(CXString text) {
    const char* chars = clang_getCString(text);
    std::string result = chars != nullptr ? chars : "";
    clang_disposeString(text);
    return result;
}

std::vector<CXCursor> childrenOf(CXCursor cursor) {
    std::vector<CXCursor> children;
    clang_visitChildren(
        cursor,
        [](CXCursor child, CXCursor, CXClientData data) {
            static_cast<std::vector<CXCursor>*>(data)->push_back(child);
            return CXChildVisit_Continue;
        },
        &children);
    return children;
}

size_t offsetOf(CXSourceLocation location) {
    unsigned offset = 0;
    clang_getFileLocation(location, nullptr, nullptr, nullptr, &offset);
    return offset;
}

struct Range {
    size_t begin;
    size_t end;
};

Range rangeOf(CXCursor cursor) {
    CXSourceRange range = clang_getCursorExtent(cursor);
    return {offsetOf(clang_getRangeStart(range)), offsetOf(clang_getRangeEnd(range))};
}

bool isExpression(CXCursor cursor) {
    return clang_isExpression(clang_getCursorKind(cursor)) != 0;
}

std::string typeOf(CXCursor cursor) {
    CXType type = clang_getCanonicalType(clang_getCursorType(cursor));
    std::string name = take(clang_getTypeSpelling(type));
    return name.compare(0, 6, "const ") == 0 && type.kind != CXType_Pointer ? name.substr(6) : name;
}

/** Blanks and line ends as one blank each, shortened with a checksum when long. */
std::string squeezed(const std::string& text) {
    constexpr size_t longest = 70;
    std::string out;
    for (char c : text) {
        bool blank = isspace(static_cast<unsigned char>(c)) != 0;
        if (!blank)
            out += c;
        else if (!out.empty() && out.back() != ' ')
            out += ' ';
    }
    while (!out.empty() && out.back() == ' ')
        out.pop_back();
    if (out.size() > longest) {
        unsigned sum = 2166136261u;
        for (char c : out)
            sum = (sum ^ static_cast<unsigned char>(c)) * 16777619u;
        char code[16];
        snprintf(code, sizeof code, "..#%04x", (sum ^ sum >> 16) & 0xffff);
        out = out.substr(0, longest) + code;
    }
    return out;
}

/** Which line of which file each line of a preprocessed text is; its markers become blank. */
class LineMap {
 public:
    explicit LineMap(std::string* text) {
        std::string file;
        unsigned line = 0;
        for (size_t at = 0; at < text->size();) {
            size_t end = std::min(text->find('\n', at), text->size());
            if (text->compare(at, 2, "# ") == 0) {
                char* rest = nullptr;
                line = static_cast<unsigned>(strtoul(text->c_str() + at + 2, &rest, 10));
                size_t name = text->find('"', at);
                size_t nameEnd = text->find('"', name + 1);
                if (name < end && nameEnd < end)
                    file = text->substr(name + 1, nameEnd - name - 1);
                std::fill(text->begin() + static_cast<long>(at),
                          text->begin() + static_cast<long>(end), ' ');
            } else {
                lines_.push_back({at, file, line});
                line++;
            }
            at = end + 1;
        }
    }

    /** File and line of an offset. */
    std::pair<std::string, unsigned> at(size_t offset) const {
        auto behind =
            std::upper_bound(lines_.begin(), lines_.end(), offset,
                             [](size_t value, const Line& line) { return value < line.offset; });
        if (behind == lines_.begin())
            return {"", 0};
        --behind;
        return {behind->file, behind->line};
    }

 private:
    struct Line {
        size_t offset;
        std::string file;
        unsigned line;
    };
    std::vector<Line> lines_;
};

/** What the walk knows of where it is. */
struct Context {
    std::string function;
    unsigned entry = 0;
    std::string variable;
    std::string row;
    bool constant = false;
    bool initialiser = false;
};

const std::map<std::string, std::vector<std::string>>& otherOperators() {
    static const std::map<std::string, std::vector<std::string>> others = {
        {"==", {"!="}},      {"!=", {"=="}},     {"<", {"<=", ">="}}, {"<=", {"<", ">"}},
        {">", {">=", "<="}}, {">=", {">", "<"}}, {"&&", {"||"}},      {"||", {"&&"}},
        {"+", {"-"}},        {"-", {"+"}},       {"*", {"/"}},        {"/", {"*"}},
        {"%", {"*"}},        {"&", {"|"}},       {"|", {"&"}},        {"^", {"&"}},
        {"<<", {">>"}},      {">>", {"<<"}},     {"+=", {"-="}},      {"-=", {"+="}},
        {"*=", {"/="}},      {"/=", {"*="}},     {"|=", {"&="}},      {"&=", {"|="}},
        {"<<=", {">>="}},    {">>=", {"<<="}},   {"^=", {"&="}},      {"%=", {"*="}},
    };
    return others;
}

class Finder {
 public:
    Finder(const LineMap& lines, const std::function<bool(const std::string&)>& isOurs, size_t unit,
           Places* places)
        : lines_(lines),
          isOurs_(isOurs),
          unit_(unit),
          text_(places->units[unit].text),
          places_(places) {
        for (size_t i = 0; i < places->mutants.size(); i++)
            known_[places->mutants[i].key] = i;
    }

    /** Declarations outside of functions. */
    void declarations(CXCursor parent) {
        for (CXCursor cursor : childrenOf(parent)) {
            CXCursorKind kind = clang_getCursorKind(cursor);
            Range range = rangeOf(cursor);
            bool nests = kind == CXCursor_Namespace || kind == CXCursor_LinkageSpec ||
                         kind == CXCursor_UnexposedDecl;
            if (nests)
                declarations(cursor);
            else if (isOurs_(lines_.at(range.begin).first))
                walk(cursor, {});
        }
    }

 private:
    std::string raw(Range range) const {
        return text_.substr(range.begin, range.end - range.begin);
    }
    std::string raw(CXCursor cursor) const {
        return raw(rangeOf(cursor));
    }
    char before(size_t at) const {
        while (at > 0 && isspace(static_cast<unsigned char>(text_[at - 1])) != 0)
            at--;
        return at > 0 ? text_[at - 1] : '\0';
    }

    /** Whether a number is the line that it stands in: a macro's __LINE__. */
    bool isLine(const std::string& number, size_t at) const {
        unsigned line = lines_.at(at).second;
        unsigned long value = strtoul(number.c_str(), nullptr, 10);
        return value >= 10 && value + 2 >= line && value <= line + 8;
    }

    /** The text with each line number named instead of told: they change with every edit. */
    std::string withoutLines(const std::string& text, size_t at) const {
        std::string out;
        for (size_t i = 0; i < text.size();) {
            size_t end = i;
            while (end < text.size() && isalnum(static_cast<unsigned char>(text[end])) != 0)
                end++;
            end = std::max(end, i + 1);
            std::string word = text.substr(i, end - i);
            out += isLine(word, at) ? "LINE" : word;
            i = end;
        }
        return out;
    }

    /** What is known of a file that is changed. */
    struct Written {
        std::vector<std::string> lines;
        std::vector<std::string> dense;
        std::string whole;
        /** The macros that it defines. */
        std::set<std::string> macros;
    };

    const Written& written(const std::string& path) {
        auto known = written_.find(path);
        if (known != written_.end())
            return known->second;
        Written file;
        for (const std::string& line : readLines(path)) {
            file.lines.push_back(line);
            file.dense.push_back(withoutBlanks(line));
            file.whole += file.dense.back();
            constexpr char define[] = "#define";
            if (file.dense.back().compare(0, sizeof define - 1, define) == 0) {
                size_t begin = line.find_first_not_of(' ', line.find("define") + 6);
                file.macros.insert(line.substr(begin, line.find_first_of("( ", begin) - begin));
            }
        }
        return written_.emplace(path, file).first->second;
    }

    /** Whether an expression stands so at its place in its file, blanks aside, or in a macro of
     * that file that is used there. What only a macro of another file puts there, no edit of this
     * one can change. */
    bool isWritten(const std::string& text, size_t at) {
        // A macro's arguments are told as if they stood in its first line.
        constexpr unsigned linesOfAMacro = 12;
        auto place = lines_.at(at);
        const Written& file = written(place.first);
        constexpr unsigned linesOfANumber = 3;
        std::string near;
        std::string nearest;
        for (unsigned i = 0; i < linesOfAMacro; i++) {
            size_t line = place.second + i - 1;
            near += line < file.lines.size() ? file.dense[line] : "";
            if (i < linesOfANumber)
                nearest += line < file.lines.size() ? file.lines[line] + " " : "";
        }
        const std::string plain = withoutBlanks(text);
        bool isNumber = isdigit(static_cast<unsigned char>(plain[0])) != 0;
        if (isNumber ? hasWord(nearest, plain) : near.find(plain) != near.npos)
            return true;
        bool usesOwn =
            place.second >= 1 && place.second <= file.lines.size() &&
            std::any_of(file.macros.begin(), file.macros.end(), [&](const std::string& macro) {
                return file.lines[place.second - 1].find(macro) != std::string::npos;
            });
        return usesOwn && file.whole.find(plain) != file.whole.npos;
    }

    /** Whether a number stands in a text by itself. */
    static bool hasWord(const std::string& text, const std::string& word) {
        auto isOf = [](char c) { return isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; };
        for (size_t at = 0; (at = text.find(word, at)) != text.npos; at++) {
            size_t end = at + word.size();
            if ((at == 0 || !isOf(text[at - 1])) && (end == text.size() || !isOf(text[end])))
                return true;
        }
        return false;
    }
    static std::string withoutBlanks(std::string text) {
        text.erase(std::remove_if(text.begin(), text.end(),
                                  [](unsigned char c) { return isspace(c) != 0 || c == '\\'; }),
                   text.end());
        return text;
    }

    /** Notes a mutant: `parts` replaced. `was` and `becomes` name it. */
    void add(const Context& context, const std::vector<Replacement>& parts, const std::string& was,
             const std::string& becomes) {
        for (const Replacement& part : parts) {
            bool whole = part.statement || part.dropped || text_[part.begin] == '{';
            if (!whole && !isWritten(raw({part.begin, part.end}), part.begin))
                return;
        }
        auto place = lines_.at(parts[0].begin);
        std::string file = place.first.substr(place.first.rfind('/') + 1);
        std::string key = file + " " + context.function + ": " +
                          squeezed(withoutLines(was, parts[0].begin)) + " => " +
                          squeezed(withoutLines(becomes, parts[0].begin));
        unsigned number = ++ordinal_[key];
        if (number > 1)
            key += " [" + std::to_string(number) + "]";
        auto found = known_.find(key);
        if (found == known_.end()) {
            Mutant mutant = {static_cast<unsigned>(places_->mutants.size()) + 1,
                             key,
                             place.first,
                             place.second,
                             context.row,
                             context.entry,
                             context.variable,
                             context.constant,
                             {}};
            found = known_.emplace(key, places_->mutants.size()).first;
            places_->mutants.push_back(mutant);
        }
        std::vector<Replacement>& there = places_->mutants[found->second].replacements[unit_];
        there = parts;
        for (Replacement& part : there)
            part.initialiser = context.initialiser;
    }

    void change(const Context& context, Range range, const std::string& becomes) {
        add(context, {{range.begin, range.end, becomes, false, false, false}}, raw(range), becomes);
    }

    static std::string nameOf(CXCursor cursor) {
        std::string name = take(clang_getCursorSpelling(cursor));
        CXCursor parent = clang_getCursorSemanticParent(cursor);
        CXCursorKind kind = clang_getCursorKind(parent);
        if (kind == CXCursor_ClassDecl || kind == CXCursor_StructDecl ||
            kind == CXCursor_ClassTemplate)
            name = take(clang_getCursorSpelling(parent)) + "::" + name;
        return name;
    }

    unsigned entryOf(const std::string& name) {
        auto added = places_->entries.emplace(
            name, firstEntry + static_cast<unsigned>(places_->entries.size()));
        return added.first->second;
    }

    void function(CXCursor cursor, Context context) {
        std::vector<CXCursor> children = childrenOf(cursor);
        context.function = nameOf(cursor);
        bool hasBody =
            !children.empty() && clang_getCursorKind(children.back()) == CXCursor_CompoundStmt;
        if (hasBody) {
            std::string file = lines_.at(rangeOf(cursor).begin).first;
            context.entry = entryOf(file + " " + context.function);
            places_->units[unit_].entries[rangeOf(children.back()).begin + 1] = context.entry;
            addressed_.clear();
            findAddressed(cursor);
        }
        for (CXCursor child : children)
            walk(child, context);
    }

    /** The variables whose addresses are taken: the values that they begin with are of no use. */
    void findAddressed(CXCursor cursor) {
        for (CXCursor child : childrenOf(cursor)) {
            if (clang_getCursorKind(child) == CXCursor_UnaryOperator && raw(child)[0] == '&')
                addressed_.insert(squeezed(raw(child).substr(1)));
            findAddressed(child);
        }
    }

    void variable(CXCursor cursor, Context context) {
        CXCursor parent = clang_getCursorSemanticParent(cursor);
        CXCursorKind kind = clang_getCursorKind(parent);
        bool ofTheProgram = kind == CXCursor_TranslationUnit || kind == CXCursor_Namespace ||
                            kind == CXCursor_ClassDecl || kind == CXCursor_StructDecl;
        Range range = rangeOf(cursor);
        size_t name = offsetOf(clang_getCursorLocation(cursor));
        std::string head = text_.substr(range.begin, name - range.begin);
        // The word constexpr may stand before what the extent covers.
        bool isStatic = ofTheProgram || head.find("static") != head.npos;
        bool isConstant = clang_isConstQualifiedType(clang_getCursorType(cursor)) != 0 ||
                          clang_getCursorType(cursor).kind == CXType_ConstantArray ||
                          clang_getCursorType(cursor).kind == CXType_IncompleteArray;
        context.initialiser = isStatic || (isConstant && head.find('&') == head.npos);
        if (size_t word = head.find("constexpr"); word != head.npos)
            places_->units[unit_].constants.push_back(
                {range.begin + word, range.begin + word + strlen_("constexpr")});
        if (isStatic) {
            context.variable = take(clang_getCursorUSR(cursor));
            if (ofTheProgram)
                context.function = nameOf(cursor);
        }
        std::string spelling = take(clang_getCursorSpelling(cursor));
        for (CXCursor child : childrenOf(cursor)) {
            Context inner = context;
            inner.constant = context.constant || before(rangeOf(child).begin) == '[';
            bool plain = !isStatic && !isConstant && addressed_.count(spelling) > 0;
            CXCursorKind childKind = clang_getCursorKind(child);
            if (plain &&
                (childKind == CXCursor_IntegerLiteral || childKind == CXCursor_UnexposedExpr ||
                 childKind == CXCursor_UnaryOperator) &&
                raw(child).size() <= 2)
                continue;
            walk(child, inner);
        }
    }
    static size_t strlen_(const char* text) {
        return std::string(text).size();
    }

    void literal(CXCursor cursor, const Context& context) {
        Range range = rangeOf(cursor);
        std::string was = raw(range);
        switch (clang_getCursorKind(cursor)) {
            case CXCursor_IntegerLiteral:
            case CXCursor_FloatingLiteral:
                if (was.find('_') != was.npos || isLine(was, range.begin))
                    return;
                change(context, range, "(" + was + " + 1)");
                if (was != "0")
                    change(context, range, "(" + was + " - 1)");
                break;
            case CXCursor_CXXBoolLiteralExpr:
                change(context, range, was == "true" ? "false" : "true");
                break;
            case CXCursor_CharacterLiteral:
                change(context, range, "static_cast<" + typeOf(cursor) + ">(" + was + " + 1)");
                break;
            case CXCursor_StringLiteral:
                if (was[0] == '"')
                    change(context, range, "\"~\" " + was);
                break;
            default:
                break;
        }
    }

    /** A name of an enumerator: the next one of its enumeration that has another value. */
    void reference(CXCursor cursor, const Context& context) {
        CXCursor target = clang_getCursorReferenced(cursor);
        CXCursorKind kind = clang_getCursorKind(target);
        if (kind == CXCursor_VarDecl) {
            std::string usr = take(clang_getCursorUSR(target));
            if (context.entry != 0)
                places_->readers[usr].insert(context.entry);
            else if (!context.variable.empty())
                places_->holders[usr].insert(context.variable);
        }
        if (kind != CXCursor_EnumConstantDecl)
            return;
        std::vector<CXCursor> all = childrenOf(clang_getCursorSemanticParent(target));
        size_t at = 0;
        while (at < all.size() && clang_equalCursors(all[at], target) == 0)
            at++;
        long long value = clang_getEnumConstantDeclValue(target);
        for (size_t step = 1; step < all.size(); step++) {
            CXCursor other = all[(at + step) % all.size()];
            if (clang_getCursorKind(other) != CXCursor_EnumConstantDecl ||
                clang_getEnumConstantDeclValue(other) == value)
                continue;
            std::string was = raw(cursor);
            std::string name = take(clang_getCursorSpelling(target));
            if (was.size() < name.size() ||
                was.compare(was.size() - name.size(), name.size(), name) != 0)
                return;
            change(context, rangeOf(cursor),
                   was.substr(0, was.size() - name.size()) + take(clang_getCursorSpelling(other)));
            return;
        }
    }

    void binary(CXCursor cursor, const std::vector<CXCursor>& children, const Context& context) {
        if (children.size() != 2)
            return;
        Range whole = rangeOf(cursor);
        Range left = rangeOf(children[0]);
        Range right = rangeOf(children[1]);
        if (left.end > right.begin)
            return;
        std::string sign = squeezed(raw({left.end, right.begin}));
        if (!sign.empty() && sign[0] == ' ')
            sign.erase(0, 1);
        auto others = otherOperators().find(sign);
        if (others == otherOperators().end())
            return;
        for (const std::string& other : others->second)
            add(context,
                {{whole.begin, whole.end, raw(left) + " " + other + " " + raw(right), false, false,
                  false}},
                raw(whole), squeezed(raw(left)) + " " + other + " " + squeezed(raw(right)));
    }

    void unary(CXCursor cursor, const std::vector<CXCursor>& children, const Context& context) {
        if (children.size() != 1)
            return;
        Range whole = rangeOf(cursor);
        Range inner = rangeOf(children[0]);
        std::string sign = squeezed(raw({whole.begin, inner.begin}));
        std::string behind = squeezed(raw({inner.end, whole.end}));
        if (sign == "!")
            change(context, whole, "static_cast<bool>(" + raw(inner) + ")");
        else if (sign == "-" && clang_getCursorKind(children[0]) != CXCursor_IntegerLiteral)
            change(context, whole, "(" + raw(inner) + ")");
        else if (sign == "++" || sign == "--")
            change(context, whole, (sign == "++" ? "--" : "++") + raw(inner));
        else if (behind == "++" || behind == "--")
            change(context, whole, raw(inner) + (behind == "++" ? "--" : "++"));
    }

    /** Neighbours of the same type that are not the same, exchanged. */
    void exchange(const std::vector<CXCursor>& arguments, const Context& context) {
        for (size_t i = 1; i < arguments.size(); i++) {
            Range first = rangeOf(arguments[i - 1]);
            Range second = rangeOf(arguments[i]);
            std::string a = raw(first);
            std::string b = raw(second);
            if (first.end > second.begin || a.empty() || b.empty() || a == b ||
                typeOf(arguments[i - 1]) != typeOf(arguments[i]))
                continue;
            // A list in braces is no expression that a switch could choose.
            Context own = context;
            own.constant = context.constant || a[0] == '{' || b[0] == '{';
            add(own,
                {{first.begin, first.end, b, false, false, false},
                 {second.begin, second.end, a, false, false, false}},
                a + ", " + b, b + ", " + a);
        }
    }

    void call(CXCursor cursor, const std::vector<CXCursor>& children, const Context& context) {
        CXCursor callee = clang_getCursorReferenced(cursor);
        std::string name = take(clang_getCursorSpelling(callee));
        if (name == "operator==" || name == "operator!=") {
            if (children.size() == 3) {
                Range whole = rangeOf(cursor);
                Range left = rangeOf(children[0]);
                Range right = rangeOf(children[2]);
                if (left.end < right.begin)
                    change(context, whole,
                           raw(left) + (name == "operator==" ? " != " : " == ") + raw(right));
            }
            return;
        }
        // What is asked of these is the same for both orders.
        bool alike = name == "strcmp" || name == "memcmp" || name == "min" || name == "max";
        if (alike || name.compare(0, 8, "operator") == 0)
            return;
        std::vector<CXCursor> arguments;
        int count = clang_Cursor_getNumArguments(cursor);
        for (int i = 0; i < count; i++)
            arguments.push_back(clang_Cursor_getArgument(cursor, static_cast<unsigned>(i)));
        exchange(arguments, context);
    }

    /** A condition that something hangs on; what turns it round already is left alone. */
    void condition(CXCursor cursor, const Context& context) {
        if (!isExpression(cursor))
            return;
        Range range = rangeOf(cursor);
        std::string was = raw(range);
        std::vector<CXCursor> children = childrenOf(cursor);
        if (was[0] == '!' || clang_getCursorKind(cursor) == CXCursor_IntegerLiteral ||
            clang_getCursorKind(cursor) == CXCursor_CXXBoolLiteralExpr)
            return;
        if (children.size() == 2 && clang_getCursorKind(cursor) == CXCursor_BinaryOperator) {
            std::string sign =
                squeezed(raw({rangeOf(children[0]).end, rangeOf(children[1]).begin}));
            sign.erase(0, sign.find_first_not_of(' '));
            if (sign != "&&" && sign != "||" && otherOperators().count(sign) > 0 &&
                std::string("=!<>").find(sign[0]) != std::string::npos)
                return;
        }
        change(context, range, "!(" + was + ")");
    }

    /** Behind the semicolon of a statement, or its own end when it has none. */
    size_t statementEnd(Range range) const {
        size_t at = range.end;
        while (at < text_.size() && isspace(static_cast<unsigned char>(text_[at])) != 0)
            at++;
        return at < text_.size() && text_[at] == ';' && text_[range.end - 1] != '}' ? at + 1
                                                                                    : range.end;
    }

    /** One statement of a body. */
    void statement(CXCursor cursor, const Context& context) {
        Range range = rangeOf(cursor);
        CXCursorKind kind = clang_getCursorKind(cursor);
        std::string was = raw(range);
        bool cast = was.compare(0, 6, "(void)") == 0 || was.compare(0, 4, "((vo") == 0;
        if (isExpression(cursor) && !cast && kind != CXCursor_IntegerLiteral) {
            add(context, {{range.begin, range.end, "(void)0", false, true, false}}, was, "dropped");
        } else if (kind == CXCursor_IfStmt) {
            std::vector<CXCursor> parts = childrenOf(cursor);
            Range all = {range.begin, statementEnd(range)};
            if (!parts.empty() && all.end > all.begin)
                add(context, {{all.begin, all.end, "{}", true, false, false}},
                    "if (" + squeezed(raw(parts[0])) + ")", "dropped");
        } else if (kind == CXCursor_BreakStmt || kind == CXCursor_ContinueStmt ||
                   (kind == CXCursor_ReturnStmt && was.find_first_not_of(" ;", 6) == was.npos)) {
            add(context, {{range.begin, statementEnd(range), "{}", true, false, false}}, was,
                "dropped");
        }
    }

    void statementsIn(CXCursorKind kind, const std::vector<CXCursor>& children,
                      const Context& context) {
        if (kind == CXCursor_CompoundStmt) {
            for (CXCursor child : children)
                statement(child, context);
        } else if (kind == CXCursor_IfStmt && children.size() >= 2) {
            for (size_t i = 1; i < children.size(); i++)
                statement(children[i], context);
        } else if ((kind == CXCursor_ForStmt || kind == CXCursor_WhileStmt ||
                    kind == CXCursor_CXXForRangeStmt) &&
                   !children.empty()) {
            statement(children.back(), context);
        } else if ((kind == CXCursor_CaseStmt || kind == CXCursor_DefaultStmt) &&
                   !children.empty()) {
            statement(children.back(), context);
        }
    }

    void walk(CXCursor cursor, const Context& context) {
        CXCursorKind kind = clang_getCursorKind(cursor);
        Range range = rangeOf(cursor);
        if (kind == CXCursor_StaticAssert) {
            places_->units[unit_].assertions.push_back({range.begin, range.end});
            return;
        }
        // What asks of types alone, and has no value when it runs.
        if (kind == CXCursor_UnaryExpr || kind == CXCursor_SizeOfPackExpr ||
            kind == CXCursor_CXXTypeidExpr || kind == CXCursor_TypedefDecl ||
            kind == CXCursor_TypeAliasDecl)
            return;
        if (kind == CXCursor_FunctionDecl || kind == CXCursor_CXXMethod ||
            kind == CXCursor_Constructor || kind == CXCursor_Destructor ||
            kind == CXCursor_FunctionTemplate || kind == CXCursor_ConversionFunction)
            return function(cursor, context);
        if (kind == CXCursor_VarDecl)
            return variable(cursor, context);
        std::vector<CXCursor> children = childrenOf(cursor);
        Context inner = context;
        switch (kind) {
            case CXCursor_EnumConstantDecl:
                inner.constant = true;
                inner.function = take(clang_getCursorSpelling(cursor));
                break;
            case CXCursor_FieldDecl:
                inner.function = nameOf(cursor);
                break;
            case CXCursor_IntegerLiteral:
            case CXCursor_FloatingLiteral:
            case CXCursor_CXXBoolLiteralExpr:
            case CXCursor_CharacterLiteral:
            case CXCursor_StringLiteral:
                return literal(cursor, context);
            case CXCursor_DeclRefExpr:
                reference(cursor, context);
                break;
            case CXCursor_BinaryOperator:
            case CXCursor_CompoundAssignOperator:
                binary(cursor, children, context);
                break;
            case CXCursor_UnaryOperator:
                unary(cursor, children, context);
                break;
            case CXCursor_CallExpr:
                call(cursor, children, context);
                break;
            case CXCursor_InitListExpr:
                if (context.row.empty() || children.size() <= 12)
                    exchange(children, context);
                break;
            case CXCursor_IfStmt:
            case CXCursor_WhileStmt:
            case CXCursor_ConditionalOperator:
                if (!children.empty())
                    condition(children[0], context);
                break;
            default:
                break;
        }
        statementsIn(kind, children, context);
        for (size_t i = 0; i < children.size(); i++) {
            Context own = inner;
            char lead = before(rangeOf(children[i]).begin);
            own.constant = inner.constant || (kind == CXCursor_CaseStmt && i == 0) ||
                           (kind == CXCursor_FieldDecl && (lead == '[' || lead == ':'));
            if (kind == CXCursor_InitListExpr && !context.variable.empty())
                own.row = raw(children[i]).size() < 2000 ? raw(children[i]) : context.row;
            // A macro's "do ... while (0)" is no loop.
            if (kind == CXCursor_DoStmt && i + 1 == children.size() &&
                clang_getCursorKind(children[i]) == CXCursor_IntegerLiteral)
                continue;
            walk(children[i], own);
        }
    }

    const LineMap& lines_;
    const std::function<bool(const std::string&)>& isOurs_;
    size_t unit_;
    const std::string& text_;
    Places* places_;
    std::map<std::string, size_t> known_;
    std::map<std::string, unsigned> ordinal_;
    std::map<std::string, Written> written_;
    std::set<std::string> addressed_;
};

}  // namespace

bool findPlaces(const std::string& source, const std::string& preprocessed,
                const std::function<bool(const std::string&)>& isOurs, Places* places) {
    Unit unit;
    unit.source = source;
    unit.text = preprocessed;
    LineMap lines(&unit.text);
    // The text must not move while the walk refers to it.
    places->units.reserve(256);
    places->units.push_back(unit);
    const std::string& text = places->units.back().text;
    // gcc's headers have functions that clang's constexpr does not take.
    const char* arguments[] = {"-x", "c++-cpp-output", "-std=c++17", "-w",
                               "-Wno-invalid-constexpr"};
    CXUnsavedFile file = {"unit.ii", text.c_str(), text.size()};
    CXIndex index = clang_createIndex(0, 0);
    CXTranslationUnit parsed = nullptr;
    CXErrorCode error = clang_parseTranslationUnit2(index, "unit.ii", arguments, 5, &file, 1,
                                                    CXTranslationUnit_None, &parsed);
    bool good = error == CXError_Success && parsed != nullptr;
    for (unsigned i = 0; good && i < clang_getNumDiagnostics(parsed); i++) {
        CXDiagnostic diagnostic = clang_getDiagnostic(parsed, i);
        if (clang_getDiagnosticSeverity(diagnostic) >= CXDiagnostic_Error) {
            fprintf(stderr, "%s: %s\n", source.c_str(),
                    take(clang_formatDiagnostic(diagnostic, 0)).c_str());
            good = false;
        }
        clang_disposeDiagnostic(diagnostic);
    }
    if (good)
        Finder(lines, isOurs, places->units.size() - 1, places)
            .declarations(clang_getTranslationUnitCursor(parsed));
    if (parsed != nullptr)
        clang_disposeTranslationUnit(parsed);
    clang_disposeIndex(index);
    return good;
}

unsigned pointCount(const Places& places) {
    return firstEntry + static_cast<unsigned>(places.entries.size());
}
