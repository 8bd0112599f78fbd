// SPDX-License-Identifier: Apache-2.0
// What the outcome of a remote call means: a log line and a result. One mechanism for all calls of
// the library, which differ in the values of their rows, never in code.
#ifndef MURLINK_VERDICT_H
#define MURLINK_VERDICT_H

#include <grpcpp/support/status.h>

#include "Log.h"

namespace murlink {

// The outcome of a call. `s` is the peer's answer and counts only when the status is OK.
struct Reply {
  grpc::Status status;
  int s = 0;
};

// One way in which a call can end. `text` is a printf format for `s`; most texts do not show it.
struct Verdict {
  Level level;
  LogText text;
  int result;
};

// Every way in which a call can end.
struct Verdicts {
  Verdict done;       // s = 0
  Verdict already;    // s = 1
  Verdict gone;       // s = 3
  Verdict unknown;    // any other s
  Verdict timed_out;  // DEADLINE_EXCEEDED
  Verdict not_ok;     // any other status
};

const Verdict& judge(const Verdicts& verdicts, const Reply& reply);

// Logs the verdict on a reply as a line of `site`, and returns its result.
int conclude(const Verdicts& verdicts, const Reply& reply, const CallSite& site);

}  // namespace murlink

#endif
