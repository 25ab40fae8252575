// Making sure the resources one class uses are in the drawing before an object gets the class:
// the drawing may have changed, or be another one, since the classifier was loaded.
#pragma once

#include "classifier/Classifier.h"
#include "classifier/ClassifierDrawing.h"

namespace veltarn {

// The resources `def` names (block, dimension style, layers other than "*", linetype, multileader
// and multiline style, pattern, text style), per kind, in the class's own spelling.
ResourceNames classResourceNames(const ClassDef& def);

// Brings the resources of `def` that `drawing` lacks in from the classifier's resource files.
// False when a file that should supply one could not be read. A name that no file supplies is no
// failure here: the caller reports it where it would be used.
bool loadClassResources(ClassifierDrawing& drawing, Classifier& classifier, const ClassDef& def);

}  // namespace veltarn
