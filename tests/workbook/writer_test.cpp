// The workbook writer: what is written comes back, in whatever order and however often it was
// written and saved in between; and a save replaces a file whole or leaves it alone.
#include <dirent.h>
#include <errno.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <random>
#include <set>

#include "framework/workbook/biff.h"
#include "framework/workbook/bytes.h"
#include "framework/workbook/cfb.h"
#include "framework/workbook/xlslib.h"
#include "tests/workbook/maker.h"

namespace {

using Texts = std::map<std::pair<unsigned, unsigned>, std::string>;

// Saves on these tests' account need no sync; one test switches it on.
class WorkbookWriter : public testing::Test {
 protected:
    void SetUp() override {
        setenv("ZK_REPORT_SYNC", "0", 1);
        book_ = xlsNewWorkbook();
        ASSERT_NE(book_, nullptr);
    }
    void TearDown() override {
        xlsDeleteWorkbook(book_);
        unsetenv("ZK_REPORT_SYNC");
    }
    ReadBook saveAndRead() {
        const std::string path = temporaryPath("writer.xls");
        EXPECT_EQ(xlsWorkbookDump(book_, path.c_str()), 0);
        return readFile(path);
    }
    workbook* book_ = nullptr;
};

TEST_F(WorkbookWriter, ARunsReportIsWholeAfterEverySave) {
    const std::string path = temporaryPath("report.xls");
    Texts expected;
    worksheet* sheet = xlsWorkbookSheet(book_, "GPIO");
    for (unsigned row = 0; row < 40; row++) {
        const std::string name = "TC_GPIO_" + std::to_string(row);
        for (const char* word : {"Block", row % 3 == 0 ? "Fail" : "Pass"}) {
            xlsWorksheetNumberInt(sheet, row, 0, static_cast<int>(row), nullptr);
            xlsWorksheetLabel(sheet, row, 1, name.c_str(), nullptr);
            xlsWorksheetLabel(sheet, row, 3, word, nullptr);
            expected[{row, 0}] = std::to_string(row);
            expected[{row, 1}] = name;
            expected[{row, 3}] = word;
            ReadBook read = saveAndRead();
            ASSERT_EQ(read.error, LIBXLS_OK);
            ASSERT_EQ(read.sheets[0].error, LIBXLS_OK);
            ASSERT_EQ(read.sheets[0].lastRow, row);
            ASSERT_EQ(read.sheets[0].texts, expected);
        }
    }
}

TEST_F(WorkbookWriter, AnyOrderOfWritesAndSavesComesBack) {
    std::mt19937 random(7);
    std::vector<worksheet*> sheets;
    std::vector<Texts> expected;
    for (int step = 0; step < 4000; step++) {
        if (sheets.empty() || (sheets.size() < 5 && random() % 500 == 0)) {
            sheets.push_back(
                xlsWorkbookSheet(book_, ("S" + std::to_string(sheets.size())).c_str()));
            expected.emplace_back();
        }
        size_t which = random() % sheets.size();
        std::pair<unsigned, unsigned> at(random() % 60, random() % 6);
        if (random() % 3 == 0) {
            int value = static_cast<int>(random());
            ASSERT_NE(xlsWorksheetNumberInt(sheets[which], at.first, at.second, value, nullptr),
                      nullptr);
            expected[which][at] = std::to_string(value);
        } else {
            std::string text = random() % 8 == 0 ? "" : "text " + std::to_string(random() % 400);
            ASSERT_NE(xlsWorksheetLabel(sheets[which], at.first, at.second, text.c_str(), nullptr),
                      nullptr);
            expected[which][at] = text;
            if (text.empty()) {
                expected[which].erase(at);
            }
        }
        if (random() % 40 == 0 || step == 3999) {
            ReadBook read = saveAndRead();
            ASSERT_EQ(read.sheets.size(), sheets.size());
            for (size_t i = 0; i < sheets.size(); i++) {
                ASSERT_EQ(read.sheets[i].texts, expected[i]) << "step " << step << " sheet " << i;
            }
        }
    }
}

TEST_F(WorkbookWriter, NumbersAndPlacesOfAllSizes) {
    worksheet* sheet = xlsWorkbookSheet(book_, "Numbers");
    const int values[] = {0,          1,          -1,        536870911, 536870912,
                          -536870912, -536870913, INT32_MAX, INT32_MIN};
    unsigned col = 0;
    for (int value : values) {
        EXPECT_NE(xlsWorksheetNumberInt(sheet, 65535, col++, value, nullptr), nullptr);
    }
    EXPECT_NE(xlsWorksheetNumberInt(sheet, 0, 255, 5, nullptr), nullptr);
    EXPECT_EQ(xlsWorksheetNumberInt(sheet, 65536, 0, 5, nullptr), nullptr);
    EXPECT_EQ(xlsWorksheetNumberInt(sheet, 0, 256, 5, nullptr), nullptr);
    EXPECT_EQ(xlsWorksheetLabel(sheet, UINT32_MAX, 0, "x", nullptr), nullptr);
    EXPECT_EQ(xlsWorksheetLabel(sheet, 0, 0, nullptr, nullptr), nullptr);
    EXPECT_EQ(xlsWorksheetLabel(nullptr, 0, 0, "x", nullptr), nullptr);
    ReadSheet read = saveAndRead().sheets[0];
    EXPECT_EQ(read.lastRow, 65535u);
    EXPECT_EQ(read.texts.size(), 10u);
    for (unsigned i = 0; i < 9; i++) {
        EXPECT_EQ(read.texts[std::make_pair(65535u, i)], std::to_string(values[i]));
    }
}

TEST_F(WorkbookWriter, TextsOfAllKinds) {
    const std::string longest(32767, 'x');
    const std::string replacement = "\xEF\xBF\xBD";
    const struct {
        std::string given;
        std::string back;
    } cases[] = {
        {"plain", "plain"},
        {"d\xC3\xA9j\xC3\xA0", "d\xC3\xA9j\xC3\xA0"},
        {"\xE4\xB8\xAD\xF0\x9F\x98\x80", "\xE4\xB8\xAD\xF0\x9F\x98\x80"},
        {"tab\tline\nbell\a\x7F", "tab\tline\nbell\a\x7F"},
        {longest + "y", longest},
        {longest.substr(1) + "\xF0\x9F\x98\x80", longest.substr(1)},  // a pair is not cut
        {"a\xFFz", "a" + replacement + "z"},
        {"cut\xE4\xB8", "cut" + replacement + replacement},
        {"overlong\xC0\xAF", "overlong" + replacement + replacement},
        {"surrogate\xED\xA0\x80", "surrogate" + replacement + replacement + replacement},
        {"\xF4\x90\x80\x80", replacement + replacement + replacement + replacement},
        {"\xF0", replacement},
    };
    worksheet* sheet = xlsWorkbookSheet(book_, "Texts");
    unsigned row = 0;
    for (const auto& c : cases) {
        EXPECT_NE(xlsWorksheetLabel(sheet, row++, 0, c.given.c_str(), nullptr), nullptr);
    }
    ReadSheet read = saveAndRead().sheets[0];
    row = 0;
    for (const auto& c : cases) {
        EXPECT_TRUE(read.texts[std::make_pair(row, 0u)] == c.back) << "row " << row;
        row++;
    }
}

TEST_F(WorkbookWriter, SheetNames) {
    const std::string name31(31, 'n');
    EXPECT_EQ(xlsWorkbookSheet(book_, nullptr), nullptr);
    EXPECT_EQ(xlsWorkbookSheet(book_, ""), nullptr);
    EXPECT_EQ(xlsWorkbookSheet(nullptr, "x"), nullptr);
    EXPECT_EQ(xlsWorkbookDump(book_, temporaryPath("none.xls").c_str()), -1) << "no sheet yet";
    for (const std::string& name :
         {std::string("Demux-ATSC"), name31 + "o", std::string("\xE4\xB8\xAD")}) {
        EXPECT_NE(xlsWorkbookSheet(book_, name.c_str()), nullptr);
    }
    ReadBook read = saveAndRead();
    ASSERT_EQ(read.sheets.size(), 3u);
    EXPECT_EQ(read.sheets[0].name, "Demux-ATSC");
    EXPECT_EQ(read.sheets[1].name, name31);
    EXPECT_EQ(read.sheets[2].name, "\xE4\xB8\xAD");
    EXPECT_EQ(read.sheets[0].lastRow, 0u);
}

// Walks the saved stream and checks what readers demand of the shared strings' records.
void expectReadableRecords(const std::string& path) {
    const char* name = "Workbook";
    std::string file = fileContent(path);
    ByteBuffer stream = {};
    ASSERT_EQ(cfbReadStream(reinterpret_cast<const uint8_t*>(file.data()), file.size(), &name, 1,
                            &stream),
              CFB_OK);
    size_t left = 0;  // characters of the current string still to come
    size_t strings = 0;
    uint32_t stated = 0;
    unsigned id = 0;
    for (size_t at = 0; id != BIFF_EOF; at += 4 + getLe16(stream.data + at + 2)) {
        id = getLe16(stream.data + at);
        size_t size = getLe16(stream.data + at + 2);
        ASSERT_LE(size, kBiffMaxContent);
        if (id != BIFF_SST && id != BIFF_CONTINUE) {
            continue;
        }
        const uint8_t* p = stream.data + at + 4;
        const uint8_t* end = p + size;
        stated = id == BIFF_SST ? getLe32(p + 4) : stated;
        p += id == BIFF_SST ? 8 : 0;
        size_t width = left > 0 ? 1u + (*p++ & 1) : 0;
        while (p < end) {
            if (left == 0) {
                ASSERT_GE(end - p, 3 + 1) << "a header is split from its characters";
                left = getLe16(p);
                width = 1u + (p[2] & 1);
                p += 3;
                strings++;
            }
            size_t part = std::min(left, static_cast<size_t>(end - p) / width);
            ASSERT_GT(part, 0u) << "half a character";
            left -= part;
            p += part * width;
        }
    }
    EXPECT_EQ(left, 0u);
    EXPECT_EQ(strings, stated);
    bufferFree(&stream);
}

TEST_F(WorkbookWriter, SharedStringsMeetTheEndOfARecordAtEveryPlace) {
    // A first string of about the length of a record puts the following ones around its end.
    const std::string chinese = "\xE4\xB8\xAD\xE6\x96\x87\xE5\xAD\x97";
    for (size_t first = 8180; first < 8230; first++) {
        xlsDeleteWorkbook(book_);
        book_ = xlsNewWorkbook();
        worksheet* sheet = xlsWorkbookSheet(book_, "SST");
        std::vector<std::string> texts = {std::string(first, 'a'), "bc", chinese, "d",
                                          std::string(20000, 'e') + chinese};
        for (size_t i = 0; i < texts.size(); i++) {
            xlsWorksheetLabel(sheet, static_cast<unsigned>(i), 0, texts[i].c_str(), nullptr);
        }
        ReadSheet read = saveAndRead().sheets[0];
        for (size_t i = 0; i < texts.size(); i++) {
            ASSERT_TRUE(read.texts[std::make_pair(static_cast<unsigned>(i), 0u)] == texts[i])
                << first << " row " << i;
        }
        expectReadableRecords(temporaryPath("writer.xls"));
    }
}

TEST_F(WorkbookWriter, ThousandsOfStringsOverManySheets) {
    for (unsigned s = 0; s < 46; s++) {
        worksheet* sheet = xlsWorkbookSheet(book_, ("Module-" + std::to_string(s)).c_str());
        for (unsigned row = 0; row < 120; row++) {
            std::string name = "TC_" + std::to_string(s) + "_Case_" + std::to_string(row);
            xlsWorksheetLabel(sheet, row, 1, name.c_str(), nullptr);
            xlsWorksheetLabel(sheet, row, 2, "Y", nullptr);
        }
    }
    ReadBook read = saveAndRead();
    ASSERT_EQ(read.sheets.size(), 46u);
    EXPECT_EQ(read.sheets[45].texts[std::make_pair(119u, 1u)], "TC_45_Case_119");
    EXPECT_EQ(read.sheets[45].texts[std::make_pair(119u, 2u)], "Y");
    EXPECT_EQ(read.sheets[17].texts.size(), 240u);
    expectReadableRecords(temporaryPath("writer.xls"));
}

std::set<std::string> listFolder(const std::string& folder) {
    std::set<std::string> names;
    DIR* list = opendir(folder.c_str());
    while (const dirent* entry = readdir(list)) {
        names.insert(entry->d_name);
    }
    closedir(list);
    names.erase(".");
    names.erase("..");
    return names;
}

TEST_F(WorkbookWriter, ASaveReplacesTheFileOrLeavesItAlone) {
    unsetenv("ZK_REPORT_SYNC");
    xlsWorksheetLabel(xlsWorkbookSheet(book_, "GPIO"), 0, 0, "ID", nullptr);
    const std::string folder = temporaryPath("saves");
    const std::string path = folder + "/report.xls";
    ASSERT_EQ(xlsWorkbookDump(book_, path.c_str()), -1) << "no such folder";
    ASSERT_EQ(mkdir(folder.c_str(), 0755), 0);
    std::ofstream(path) << "old";
    std::ofstream(path + ".tmp") << std::string(100000, 'x');
    ASSERT_EQ(xlsWorkbookDump(book_, path.c_str()), 0) << "over a left-over file";
    EXPECT_EQ(listFolder(folder), (std::set<std::string>{"report.xls"}));
    EXPECT_EQ(readFile(path).error, LIBXLS_OK);

    const std::string link = folder + "/link.xls";
    ASSERT_EQ(symlink("report.xls", link.c_str()), 0);
    xlsWorksheetLabel(xlsWorkbookSheet(book_, "I2C"), 0, 0, "ID", nullptr);
    EXPECT_EQ(xlsWorkbookDump(book_, link.c_str()), 0);
    EXPECT_EQ(readFile(path).sheets.size(), 2u) << "the link leads to the file that is replaced";
    EXPECT_EQ(listFolder(folder), (std::set<std::string>{"report.xls", "link.xls"}));

    EXPECT_EQ(xlsWorkbookDump(book_, folder.c_str()), -1) << "a folder in the report's place";
    const std::string pipe = folder + "/pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(xlsWorkbookDump(book_, pipe.c_str()), -1) << "no device node is replaced by a file";
    EXPECT_EQ(xlsWorkbookDump(book_, nullptr), -1);
    EXPECT_EQ(xlsWorkbookDump(nullptr, path.c_str()), -1);
}

// What keeps a new file from taking the old one's place; then the old one is written over.
TEST_F(WorkbookWriter, WhereNoFileCanBeRenamedItIsWrittenInPlace) {
    worksheet* sheet = xlsWorkbookSheet(book_, "GPIO");
    const std::string folder = temporaryPath("in_place");
    ASSERT_EQ(mkdir(folder.c_str(), 0755), 0);
    const std::string path = folder + "/report.xls";
    ASSERT_EQ(mkdir((path + ".tmp").c_str(), 0755), 0);
    std::ofstream(path) << std::string(100000, 'x');
    unsigned rows = 0;
    auto saveRow = [&](const std::string& file) {
        xlsWorksheetLabel(sheet, rows++, 0, "ID", nullptr);
        int result = xlsWorkbookDump(book_, file.c_str());
        EXPECT_EQ(readFile(file).sheets.at(0).lastRow, rows - 1);
        return result;
    };
    EXPECT_EQ(saveRow(path), 0) << "a folder in the new file's place";
    EXPECT_EQ(xlsWorkbookInPlace(book_), EISDIR);
    EXPECT_LT(fileContent(path).size(), 100000u) << "what the old file had more is gone";

    const std::string link = folder + "/link.xls";
    ASSERT_EQ(symlink("elsewhere.xls", link.c_str()), 0);
    EXPECT_EQ(saveRow(link), 0) << "a link that leads nowhere yet";
    EXPECT_EQ(xlsWorkbookInPlace(book_), ENOENT);
    EXPECT_EQ(saveRow(link), 0);
    EXPECT_EQ(xlsWorkbookInPlace(book_), 0) << "and now leads to a file that can be replaced";

    const std::string longName = folder + "/" + std::string(250, 'n') + ".xls";
    EXPECT_EQ(saveRow(longName), 0) << "no room for the new file's longer name";
    EXPECT_EQ(xlsWorkbookInPlace(book_), ENAMETOOLONG);
    EXPECT_EQ(xlsWorkbookDump(book_, (folder + "/none/report.xls").c_str()), -1);
    EXPECT_EQ(errno, ENOENT);
}

// Rights as a user has them to whom the system denies something: root is denied nothing.
class AsUser {
 public:
    static constexpr uid_t kUser = 65534;
    AsUser() {
        if (geteuid() == 0 && seteuid(kUser) != 0)
            abort();
    }
    ~AsUser() {
        if (getuid() == 0 && seteuid(0) != 0)
            abort();
    }
};

TEST_F(WorkbookWriter, RightsOwnerAndModeStay) {
    xlsWorksheetLabel(xlsWorkbookSheet(book_, "GPIO"), 0, 0, "ID", nullptr);
    const std::string folder = temporaryPath("rights");
    const std::string path = folder + "/report.xls";
    ASSERT_EQ(mkdir(folder.c_str(), 0777), 0);
    ASSERT_EQ(chmod(temporaryPath("").c_str(), 0711), 0);
    ASSERT_EQ(chmod(folder.c_str(), 0777), 0);
    auto modeOf = [&path] {
        struct stat status = {};
        EXPECT_EQ(stat(path.c_str(), &status), 0);
        return status.st_mode & 07777;
    };
    std::ofstream(path) << "old";
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    ASSERT_EQ(xlsWorkbookDump(book_, path.c_str()), 0);
    EXPECT_EQ(modeOf(), 0640u);
    EXPECT_EQ(xlsWorkbookInPlace(book_), 0);

    ASSERT_EQ(chown(path.c_str(), geteuid() == 0 ? AsUser::kUser : geteuid(), getegid()), 0);
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    const std::string saved = fileContent(path);
    {
        AsUser user;
        xlsWorksheetLabel(xlsWorkbookSheet(book_, "I2C"), 0, 0, "ID", nullptr);
        EXPECT_EQ(xlsWorkbookDump(book_, path.c_str()), -1) << "a write-protected report";
        EXPECT_EQ(errno, EACCES);
        EXPECT_EQ(listFolder(folder), (std::set<std::string>{"report.xls"}));
    }
    EXPECT_TRUE(fileContent(path) == saved);
    ASSERT_EQ(chmod(path.c_str(), 0666), 0);
    ASSERT_EQ(chmod(folder.c_str(), 0555), 0);
    {
        AsUser user;
        EXPECT_EQ(xlsWorkbookDump(book_, path.c_str()), 0) << "a folder that may not be written";
        EXPECT_EQ(xlsWorkbookInPlace(book_), EACCES);
    }
    EXPECT_EQ(readFile(path).sheets.size(), 2u);
    ASSERT_EQ(chmod(folder.c_str(), 0777), 0);
    if (geteuid() != 0)
        return;
    ASSERT_EQ(chown(path.c_str(), 1234, 2345), 0);
    ASSERT_EQ(xlsWorkbookDump(book_, path.c_str()), 0);
    EXPECT_EQ(xlsWorkbookInPlace(book_), 0);
    {
        AsUser user;
        ASSERT_EQ(xlsWorkbookDump(book_, path.c_str()), 0);
        EXPECT_EQ(xlsWorkbookInPlace(book_), EPERM) << "a file that cannot be given away";
    }
    struct stat status = {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 1234u);
    EXPECT_EQ(status.st_gid, 2345u);
    EXPECT_EQ(modeOf(), 0666u);
    EXPECT_EQ(listFolder(folder), (std::set<std::string>{"report.xls"}));
}

// Two programs save one report as fast as they can; a reader never finds less than a whole one.
TEST_F(WorkbookWriter, TwoProgramsThatSaveOneReportDoNotMix) {
    const std::string path = temporaryPath("shared.xls");
    std::vector<pid_t> programs;
    for (unsigned rows : {1u, 4000u}) {
        pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            worksheet* sheet = xlsWorkbookSheet(book_, "GPIO");
            for (unsigned row = 0; row < rows; row++)
                xlsWorksheetNumberInt(sheet, row, 0, static_cast<int>(row), nullptr);
            int failures = 0;
            for (int save = 0; save < 300; save++)
                failures +=
                    xlsWorkbookDump(book_, path.c_str()) != 0 || xlsWorkbookInPlace(book_) != 0;
            _exit(failures != 0);
        }
        programs.push_back(child);
    }
    while (access(path.c_str(), F_OK) != 0)
        usleep(100);
    std::set<size_t> sizes;
    int status = -1;
    while (waitpid(programs[0], &status, WNOHANG) == 0) {
        ReadBook read = readFile(path);
        ASSERT_EQ(read.error, LIBXLS_OK);
        sizes.insert(read.sheets.at(0).texts.size());
    }
    EXPECT_EQ(status, 0);
    EXPECT_EQ(waitpid(programs[1], &status, 0), programs[1]);
    EXPECT_EQ(status, 0);
    for (size_t size : sizes)
        EXPECT_TRUE(size == 1 || size == 4000) << size;
    EXPECT_NE(access((path + ".tmp").c_str(), F_OK), 0);
}

// A limit of the file size stands for a medium that is full in the middle of the write.
TEST_F(WorkbookWriter, AFullMediumKeepsTheOldReport) {
    worksheet* sheet = xlsWorkbookSheet(book_, "GPIO");
    xlsWorksheetLabel(sheet, 0, 0, "ID", nullptr);
    const std::string path = temporaryPath("full.xls");
    ASSERT_EQ(xlsWorkbookDump(book_, path.c_str()), 0);
    const std::string saved = fileContent(path);
    xlsWorksheetLabel(sheet, 1, 0, std::string(20000, 'x').c_str(), nullptr);

    rlimit before = {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small = {8192, before.rlim_max};
    sighandler_t handler = signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    int result = xlsWorkbookDump(book_, path.c_str());
    bool partIsThere = access((path + ".tmp").c_str(), F_OK) == 0;
    mkdir((path + ".tmp").c_str(), 0755);
    int resultInPlace = xlsWorkbookDump(book_, path.c_str());
    rmdir((path + ".tmp").c_str());
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, handler);

    EXPECT_EQ(result, -1);
    EXPECT_FALSE(partIsThere);
    EXPECT_EQ(resultInPlace, -1) << "nor is the old one written over without room for the new";
    EXPECT_TRUE(fileContent(path) == saved);
    EXPECT_EQ(xlsWorkbookDump(book_, path.c_str()), 0) << "and the next save succeeds";
    EXPECT_EQ(readFile(path).sheets[0].lastRow, 1u);
}

}  // namespace
