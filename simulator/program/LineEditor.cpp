// SPDX-License-Identifier: Apache-2.0
#include "program/LineEditor.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace simulator {
namespace {

constexpr int kPromptWidth = 2;  // of "> "
constexpr char kCtrlD = 4;

// A stream that adds what is written to a string.
std::FILE* openString(std::string& text) {
  cookie_io_functions_t functions{};
  functions.write = [](void* string, const char* bytes, std::size_t size) {
    static_cast<std::string*>(string)->append(bytes, size);
    return static_cast<ssize_t>(size);
  };
  std::FILE* const stream = fopencookie(&text, "w", functions);
  if (stream == nullptr) {
    throw std::runtime_error("cannot edit lines");
  }
  return stream;
}

EditLine* openEditor(std::FILE* screen) {
  std::setlocale(LC_CTYPE, "");  // how the terminal encodes characters
  EditLine* const editor = el_init_fd("murlink-simulator", stdin, screen, screen, STDIN_FILENO,
                                      STDOUT_FILENO, STDOUT_FILENO);
  if (editor == nullptr) {
    throw std::runtime_error("cannot edit lines");
  }
  return editor;
}

char* prompt(EditLine* /*editor*/) {
  static std::string text("> ");
  return text.data();
}

int columnsOfTerminal() {
  constexpr int kUsual = 80;
  winsize size{};
  const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return known ? size.ws_col : kUsual;
}

// How many columns a text takes; control characters are shown as ^ and a letter.
int widthOf(std::string_view text) {
  int width = 0;
  std::mbstate_t state{};
  while (!text.empty()) {
    wchar_t character = 0;
    const std::size_t length = std::mbrtowc(&character, text.data(), text.size(), &state);
    if (length == 0 || length > text.size()) {
      break;
    }
    const int columns = wcwidth(character);
    width += columns < 0 ? 2 : columns;
    text.remove_prefix(length);
  }
  return width;
}

std::string_view beforeCursor(EditLine* editor) {
  const LineInfo* const line = el_line(editor);
  return {line->buffer, static_cast<std::size_t>(line->cursor - line->buffer)};
}

}  // namespace

LineEditor::LineEditor(Output& output, StopSignal& stop)
    : output_(output),
      stop_(stop),
      columns_(columnsOfTerminal()),
      screen_(openString(shown_)),
      editor_(openEditor(screen_)) {
  el_set(editor_, EL_CLIENTDATA, this);
  el_set(editor_, EL_EDITOR, "emacs");
  el_set(editor_, EL_PROMPT, prompt);
  el_set(
      editor_, EL_GETCFN, +[](EditLine* editor, wchar_t* key) { return of(editor).readKey(*key); });
  // The narrow form of this call leaks copies of both texts.
  el_wset(
      editor_, EL_ADDFN, L"complete", L"complete the word",
      +[](EditLine* editor, int) { return of(editor).completeWord(); });
  el_set(editor_, EL_BIND, "\t", "complete", nullptr);
  history_.attachTo(editor_);
  output_.setEditedLine(this);
}

LineEditor::~LineEditor() {
  output_.setEditedLine(nullptr);
  el_end(editor_);
  std::fclose(screen_);
}

void LineEditor::completeWith(std::function<Completion(std::string_view)> complete) {
  complete_ = std::move(complete);
}

std::optional<LineInput::Line> LineEditor::next() {
  lock_.lock();
  editing_ = true;
  int length = 0;
  const char* const typed = el_gets(editor_, &length);
  editing_ = false;
  std::optional<LineInput::Line> line;
  if (typed != nullptr && !stop_.isRaised()) {
    line.emplace();
    line->text.assign(typed, static_cast<std::size_t>(length));
    line->text.erase(line->text.find_last_not_of("\r\n") + 1);
    line->too_long = line->text.size() > LineInput::kMaxLength;
  }
  // What follows begins on a line of its own.
  output_.show(takeShown() + (line ? "" : "\n"));
  lock_.unlock();
  if (line && line->text.find_first_not_of(' ') != std::string::npos) {
    history_.add(line->text);
  }
  return line;
}

void LineEditor::printAbove(const std::string& text,
                            const std::function<void(std::string)>& print) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!editing_) {
    print(text);
    return;
  }
  const std::string erased = erasure();
  el_set(editor_, EL_REFRESH);
  print(erased + text + takeShown());
}

LineEditor& LineEditor::of(EditLine* editor) {
  void* object = nullptr;
  el_get(editor, EL_CLIENTDATA, &object);
  return *static_cast<LineEditor*>(object);
}

// Returns 1, or 0 at the end of the input and after the stop signal.
int LineEditor::readKey(wchar_t& key) {
  while (waitForInput()) {
    followResize();
    char byte = 0;
    const ssize_t length = read(STDIN_FILENO, &byte, 1);
    if (length == 0 || (length < 0 && errno != EINTR && errno != EAGAIN)) {
      break;
    }
    if (length < 0) {
      continue;
    }
    if (byte == 0) {
      byte = kCtrlD;  // typed between two lines, when the terminal is in its usual mode
    }
    const std::size_t result = std::mbrtowc(&key, &byte, 1, &partial_character_);
    if (result <= 1) {
      return 1;
    }
    if (result == static_cast<std::size_t>(-1)) {
      partial_character_ = {};  // not a character: ignored
    }
  }
  return 0;
}

// Other threads can print events meanwhile. False after the stop signal.
bool LineEditor::waitForInput() {
  output_.show(takeShown());
  lock_.unlock();
  output_.waitForRoom();
  std::array<pollfd, 2> sources{{{stop_.descriptor(), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}}};
  while (poll(sources.data(), sources.size(), -1) < 0 && errno == EINTR) {
  }
  lock_.lock();
  return sources[0].revents == 0;
}

void LineEditor::followResize() {
  if (const int columns = columnsOfTerminal(); columns != columns_) {
    shown_ = takeShown() + erasure();
    columns_ = columns;
    el_resize(editor_);
    el_set(editor_, EL_REFRESH);
  }
}

unsigned char LineEditor::completeWord() {
  if (!complete_) {
    return CC_ERROR;
  }
  const std::string line(beforeCursor(editor_));
  const Completion completion = complete_(line);
  std::string rest(commonRest(completion));
  if (completion.candidates.size() == 1) {
    rest += " ";
  }
  if (!rest.empty()) {
    return el_insertstr(editor_, rest.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
  }
  if (completion.candidates.empty()) {
    return CC_ERROR;
  }
  std::string list = takeShown() + "\n";
  for (const std::string_view candidate : completion.candidates) {
    list += std::string(candidate) + "  ";
  }
  shown_ = list + "\n";
  el_set(editor_, EL_REFRESH);
  return CC_NORM;
}

std::string LineEditor::takeShown() {
  std::fflush(screen_);
  return std::exchange(shown_, {});
}

// Moves to the first row of the line and erases all of its rows.
std::string LineEditor::erasure() const {
  const int row = (kPromptWidth + widthOf(beforeCursor(editor_))) / columns_;
  return "\r" + (row > 0 ? "\x1b[" + std::to_string(row) + "A" : "") + "\x1b[J";
}

}  // namespace simulator
