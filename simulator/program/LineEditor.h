// SPDX-License-Identifier: Apache-2.0
#ifndef MURLINK_SIMULATOR_PROGRAM_LINE_EDITOR_H
#define MURLINK_SIMULATOR_PROGRAM_LINE_EDITOR_H

#include <histedit.h>

#include <cstdio>
#include <cwchar>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "commands/Completion.h"
#include "common/EditedLine.h"
#include "common/Output.h"
#include "common/StopSignal.h"
#include "program/InputHistory.h"
#include "program/LineInput.h"

namespace simulator {

// Reads lines from the terminal that is standard input and output, with a prompt, editing, completion
// and a history. Shows the line through the output, so that a terminal that is not read delays nobody.
// next() and completeWith() are for one thread.
class LineEditor final : public EditedLine {
 public:
  // Create it before other threads print events, and destroy it after they have ended.
  LineEditor(Output& output, StopSignal& stop);
  // Restores the terminal.
  ~LineEditor() override;
  LineEditor(const LineEditor&) = delete;
  LineEditor& operator=(const LineEditor&) = delete;

  // What the Tab key does to a line up to the cursor; nothing before this is called.
  void completeWith(std::function<Completion(std::string_view)> complete);

  // The next line; none at the end of the input and after the stop signal.
  std::optional<LineInput::Line> next();
  void printAbove(const std::string& text, const std::function<void(std::string)>& print) override;

 private:
  Output& output_;
  StopSignal& stop_;
  std::function<Completion(std::string_view)> complete_;
  InputHistory history_;

  // Guards what follows. Locked by next() except while it waits for a key.
  std::mutex mutex_;
  std::unique_lock<std::mutex> lock_{mutex_, std::defer_lock};  // that of next()
  bool editing_ = false;
  std::string shown_;  // by the editor, not yet passed to the output
  std::mbstate_t partial_character_{};
  int columns_ = 0;
  std::FILE* const screen_;  // adds to `shown_`
  EditLine* const editor_;

  static LineEditor& of(EditLine* editor);
  int readKey(wchar_t& key);
  bool waitForInput();
  void followResize();
  unsigned char completeWord();
  std::string takeShown();
  std::string erasure() const;
};

}  // namespace simulator

#endif
