// What the host command tests over a drawing ezdxf made share: the drawing, made once from a
// Python script and opened in a workbench with the host commands, and typing at its command line.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>

#include "ExternalTools.h"
#include "cad/commands/HostSession.h"

namespace veltarn::cad {

class ScriptDrawingTest : public ::testing::Test {
protected:
    void TearDown() override { std::filesystem::remove_all(dir_); }

    // Makes the drawing `script` writes (cached under `name` and the script's hash, so that a
    // changed script makes a new drawing), opens it, and gives the test a scratch folder.
    void open(const std::string& name, const char* script) {
        dir_ = std::filesystem::temp_directory_path() / ("veltarn_" + name + "_" + std::to_string(::getpid()));
        std::filesystem::create_directories(dir_);
        registerHostCommands(session_);
        const std::filesystem::path file =
            testtools::madeOnce(name + "_" + std::to_string(std::hash<std::string>{}(script)) + ".dxf",
                                "-c " + testtools::quoted(script), "the " + name + " drawing");
        ASSERT_FALSE(file.empty());
        auto read = seam::WorkbenchDatabase::read(file);
        ASSERT_TRUE(read.ok()) << read.message();
        host_.openDocument(std::move(read.value()));
    }

    db::Database& db() { return host_.currentDrawing()->raw(); }
    // Types `text` and runs it to the end; what the command line printed meanwhile.
    std::wstring type(const std::wstring& text) {
        output_.clear();
        host_.commandLine().input().append(text);
        while (host_.commandLine().step()) {
        }
        return output_;
    }

    std::filesystem::path dir_;
    std::wstring output_;
    seam::WorkbenchHost host_{[this](const std::wstring& text) { output_ += text; }, "/nonexistent/settings"};
    HostSession session_{host_};
};

}  // namespace veltarn::cad
