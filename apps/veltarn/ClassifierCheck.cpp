#include "ClassifierCheck.h"

#include "classifier/ClassifierReader.h"
#include "classifier/DrawingResources.h"
#include "host/Format.h"
#include "base/RegularFile.h"
#include "host/Utf8.h"

namespace veltarn::app {

ClassifierCheck checkClassifier(seam::WorkbenchHost& host, const std::filesystem::path& file,
                                const std::function<void(const std::wstring&)>& print) {
    ClassifierCheck check;
    // The reader is silent about a file it cannot open; the caller has to say so itself.
    const FileBytes checked = checkRegularFile(file.string());
    check.opened = checked.ok();
    if (checked.problem == FileProblem::kCannotOpen) check.problem = file.string() + ": cannot open the classifier";
    else check.problem = checked.error;
    host::Database* drawing = host.workingDatabase();
    if (check.opened && drawing) {
        DrawingResources resources(host, *drawing);
        ClassifierReader reader(print, &host.systemVariables(), &resources);
        const Classifier classifier = reader.read(host::fromUtf8(file.string()));
        check.failed = reader.failed();
        // An error leaves the classifier empty, so the counts are 0 then without a special case.
        check.classes = classifier.classCount();
        check.objects = classifier.objectCount();
        check.tables = classifier.tableCount();
    } else {
        check.failed = true;
    }
    print(host::format(L"%i classes, %i objects, %i tables\n", check.classes, check.objects, check.tables));
    return check;
}

}  // namespace veltarn::app
