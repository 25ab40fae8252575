#include "cad/editor/CommandLineDialogs.h"

#include <filesystem>

#include "base/RegularFile.h"
#include "host/Utf8.h"

namespace veltarn::editor {
namespace {

namespace fs = std::filesystem;

fs::path toPath(const std::wstring& text) { return fs::path(host::toUtf8(text)); }
std::wstring fromPath(const fs::path& path) { return host::fromUtf8(path.string()); }

}  // namespace

std::optional<std::wstring> CommandLineDialogs::askPath(const std::wstring& prompt,
                                                        const host::FileDialogRequest& request) {
    std::wstring answer;
    const std::wstring shown = request.initialPath.empty() ? prompt + L": " : prompt + L" <" + request.initialPath + L">: ";
    if (editor_.getString(shown, true, answer, 4096) != host::PromptStatus::kNormal) return std::nullopt;
    if (answer.empty()) answer = request.initialPath;
    if (answer.empty()) return std::nullopt;
    fs::path path = toPath(answer);
    if (!request.defaultExtension.empty() && !path.has_extension())
        path += "." + host::toUtf8(request.defaultExtension);
    std::error_code error;
    fs::path absolute = fs::absolute(path, error);
    return fromPath(error ? path : absolute.lexically_normal());
}

std::optional<std::wstring> CommandLineDialogs::openFile(const host::FileDialogRequest& request) {
    std::optional<std::wstring> path = askPath(L"Enter name of file to open", request);
    if (!path) return std::nullopt;
    std::error_code error;
    if (!fs::exists(toPath(*path), error)) {
        editor_.print(L"File not found: " + *path + L"\n");
        return std::nullopt;
    }
    // A folder, a FIFO or a device is there but is no file to read: say what it is.
    if (const FileBytes checked = checkRegularFile(host::toUtf8(*path)); !checked.ok()) {
        editor_.print(host::fromUtf8(checked.error) + L"\n");
        return std::nullopt;
    }
    return path;
}

std::optional<std::wstring> CommandLineDialogs::saveFile(const host::FileDialogRequest& request) {
    saveRefusal_.clear();
    std::optional<std::wstring> path = askPath(L"Enter name of file to save", request);
    if (!path) return std::nullopt;
    const fs::path file = toPath(*path);
    std::error_code error;
    if (!fs::is_directory(file.parent_path(), error)) {
        saveRefusal_ = fromPath(file.parent_path()) + L": folder not found";
        editor_.print(L"Folder not found: " + fromPath(file.parent_path()) + L"\n");
        return std::nullopt;
    }
    if (fs::is_directory(file, error)) {
        saveRefusal_ = *path + L": is a directory";
        editor_.print(L"Not a file: " + *path + L"\n");
        return std::nullopt;
    }
    if (request.confirmOverwrite && fs::exists(file, error)) {
        std::wstring answer;
        const host::PromptStatus status = editor_.getKeyword(L"Replace it? [Yes/No] <No>: ", {L"Yes", L"No"}, answer);
        if (status != host::PromptStatus::kNormal || answer != L"Yes") return std::nullopt;
    }
    return path;
}

void CommandLineDialogs::textBox(const std::wstring& title, const std::wstring& text, int, int) {
    editor_.print(title + L"\n" + text + (text.empty() || text.back() == L'\n' ? L"" : L"\n"));
}

}  // namespace veltarn::editor
