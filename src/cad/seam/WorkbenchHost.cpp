#include "cad/seam/WorkbenchHost.h"

#include "cad/seam/HeaderVariables.h"
#include "cad/seam/ValueConversion.h"
#include "cad/support/UserSupportFolder.h"

namespace veltarn::seam {
namespace {

// A new user's support path: a folder of their own beside the settings, holding copies of the
// shipped files (pattern imports append there), then the shipped folder. Without that folder, the
// shipped one alone.
std::wstring newUserSupportPath(const std::filesystem::path& settingsFile) {
    const std::filesystem::path shipped = support::shippedSupportFolder();
    auto prepared = support::prepareUserSupportFolder(settingsFile.parent_path() / "support", shipped);
    return wide(prepared ? *prepared : shipped.string());
}

}  // namespace

WorkbenchHost::WorkbenchHost(editor::CommandLine::Output output, std::filesystem::path settingsFile)
    : commandLine_(registry_, variables_, std::move(output)),
      dialogs_(commandLine_),
      environment_(settingsFile, [&settingsFile] { return newUserSupportPath(settingsFile); }),
      documents_([this](const std::wstring& text) { commandLine_.sendString(text); }),
      selector_(commandLine_, [this] { return currentDrawing(); }),
      journal_([this] { return currentDrawing(); }) {
    commandLine_.setSelector([this](host::SelectionMode mode, std::vector<host::ObjectId>& ids) {
        return selector_.select(mode, ids);
    });
    commandLine_.addReactor(&journal_);
    variables_.defineComputed(L"DWGNAME", host::VariableType::kString, [this] {
        WorkbenchDocument* document = documents_.currentDocument();
        return host::VariableValue::ofString(document ? document->fileName() : std::wstring());
    });
    variables_.defineComputed(L"DWGPREFIX", host::VariableType::kString, [this] {
        WorkbenchDocument* document = documents_.currentDocument();
        return host::VariableValue::ofString(document ? document->folder() : std::wstring());
    });
}

WorkbenchHost::~WorkbenchHost() { commandLine_.removeReactor(&journal_); }

WorkbenchDatabase* WorkbenchHost::currentDrawing() {
    WorkbenchDocument* document = documents_.currentDocument();
    return document ? &document->database() : nullptr;
}

host::Database* WorkbenchHost::workingDatabase() {
    if (working_) return working_;
    return currentDrawing();
}

void WorkbenchHost::setDocumentEvents(DocumentEvent closing, DocumentEvent opened) {
    closing_ = std::move(closing);
    opened_ = std::move(opened);
}

void WorkbenchHost::closeDocument() {
    if (!documents_.currentDocument()) return;
    if (closing_) closing_();
    working_ = nullptr;
    documents_.close();
    // The set named objects of the drawing that is gone.
    commandLine_.setPickFirst({});
}

void WorkbenchHost::openDocument(std::unique_ptr<WorkbenchDatabase> drawing) {
    closeDocument();
    drawing->setCurrentSettings(&variables_);
    drawing->setSupportPath([this] { return environment_.supportPath(); });
    readHeaderVariables(drawing->raw(), variables_);
    documents_.open(std::move(drawing));
    selector_.forgetPrevious();
    commandLine_.setPickFirst({});
    if (opened_) opened_();
}

std::unique_ptr<host::Database> WorkbenchHost::readDrawing(const std::wstring& path) {
    auto read = WorkbenchDatabase::read(narrow(path));
    if (!read) return nullptr;
    return std::move(*read);
}

}  // namespace veltarn::seam
