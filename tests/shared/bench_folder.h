/* A folder of its own for a test of the simulated device: its storage, and a board file. */
#ifndef TESTS_SHARED_BENCH_FOLDER_H
#define TESTS_SHARED_BENCH_FOLDER_H

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "simulator/core/board.h"
#include "simulator/sim_control.h"

/** Makes an empty folder, puts the device's storage there, and resets the device; at its end the
 *  device is the default board again and the folder is gone. */
class BenchFolder {
 public:
    BenchFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "zkbenchXXXXXX").string();
        path_ = mkdtemp(&pattern[0]);
        setenv("QLX_SIM_ROOT", (path_ + "/device").c_str(), 1);
        qlx_sim_reset();
    }
    ~BenchFolder() {
        qlx_sim_reset();
        unsetenv("QLX_SIM_ROOT");
        unsetenv("QLX_SIM_BOARD");
        sim::reloadBoard();
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    BenchFolder(const BenchFolder&) = delete;
    BenchFolder& operator=(const BenchFolder&) = delete;

    const std::string& path() const {
        return path_;
    }

    /** Makes the device that of a board file with this text. */
    void useBoard(const std::string& text) {
        write("board.cfg", text);
        setenv("QLX_SIM_BOARD", (path_ + "/board.cfg").c_str(), 1);
        sim::reloadBoard();
    }

    void write(const std::string& name, const std::string& contents) const {
        std::filesystem::create_directories(
            std::filesystem::path(path_ + "/" + name).parent_path());
        std::ofstream(path_ + "/" + name, std::ios::binary) << contents;
    }

    std::string read(const std::string& name) const {
        std::ifstream file(path_ + "/" + name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }

 private:
    std::string path_;
};

#endif
