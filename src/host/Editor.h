// The command line and the user: prompts, object selection, the pick-first set, output.
#pragma once

#include <string>
#include <vector>

#include "host/ObjectId.h"
#include "host/Point3d.h"
#include "host/PromptStatus.h"
#include "host/ResultBuffer.h"

namespace veltarn::host {

class EditorReactor;

enum class SelectionMode {
    kInteractive,  // the user picks objects and ends with Enter
    kImplied,      // the pick-first set, without asking
    kAll,          // every entity of the drawing that is not erased
};

enum class MessageIcon { kNone, kInformation, kWarning, kError };

class Editor {
public:
    virtual ~Editor() = default;

    // Prompts. Each shows `prompt` as given (the module's own texts, "Object: " and the like) and
    // waits for an answer. kNormal with the answer; kCancel on Esc or Ctrl+C; kError when no input
    // can come (the end of a script). A prompt never fails by throwing.

    // A text. With `allowSpaces` the answer ends at the line end only, otherwise at a space too.
    // Enter alone gives kNormal and the empty text. Longer answers are cut to `maxLength`
    // characters (the module asks with 132).
    virtual PromptStatus getString(const std::wstring& prompt, bool allowSpaces, std::wstring& answer,
                                   std::size_t maxLength = 132) = 0;
    // A whole number. kNone on Enter alone; a text that is no number is asked again.
    virtual PromptStatus getInteger(const std::wstring& prompt, int& answer) = 0;
    // A real number; kNone on Enter alone; a text that is no number is asked again.
    virtual PromptStatus getReal(const std::wstring& prompt, double& answer) = 0;
    // A point typed as "x,y" or "x,y,z" (or picked in a window); `base`, when given, is the point
    // from which the user drags. kNone on Enter alone.
    virtual PromptStatus getPoint(const std::wstring& prompt, const Point3d* base, Point3d& answer) = 0;
    // One of `keywords` (matched without regard to case, a unique abbreviation is enough); the
    // answer is the keyword as listed. kNone on Enter alone; another word is asked again.
    virtual PromptStatus getKeyword(const std::wstring& prompt, const std::vector<std::wstring>& keywords,
                                    std::wstring& answer) = 0;

    // Object selection. kNormal with the chosen entities (possibly none) appended to `ids` in the
    // order chosen; kCancel when the user cancelled; kError when no input can come.
    virtual PromptStatus select(SelectionMode mode, std::vector<ObjectId>& ids) = 0;

    // The pick-first set: the entities selected before the command started and kept by its flags.
    virtual std::vector<ObjectId> pickFirst() const = 0;
    // Replaces the pick-first set; an empty list clears it.
    virtual void setPickFirst(const std::vector<ObjectId>& ids) = 0;

    // Writes `text` to the command line as it stands: no line end is added.
    virtual void print(const std::wstring& text) = 0;

    // A message box; on the command line the caption and the text on one line. Returns when the
    // user has seen it.
    virtual void messageBox(const std::wstring& text, const std::wstring& caption, MessageIcon icon) = 0;

    // Runs a host command inside the current one, as if typed: each value answers the next prompt
    // (texts, reals, integers, points, entity ids); a text of one backslash lets the user answer that
    // prompt. kNormal when the command ran to its end, kCancel when the user cancelled it, kError when
    // the command is unknown or refused an argument.
    virtual PromptStatus command(const ResultBuffer& tokens) = 0;

    // Gives the keyboard focus to the drawing window, where there is one.
    virtual void focusMainWindow() {}

    // Reactors, added and removed in pairs (see EditorReactor).
    virtual void addReactor(EditorReactor* reactor) = 0;
    virtual void removeReactor(EditorReactor* reactor) = 0;
};

}  // namespace veltarn::host
