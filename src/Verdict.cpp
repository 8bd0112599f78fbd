// SPDX-License-Identifier: Apache-2.0
#include "Verdict.h"

namespace murlink {

const Verdict& judge(const Verdicts& verdicts, const Reply& reply) {
  switch (reply.status.error_code()) {
    case grpc::StatusCode::OK:
      break;
    case grpc::StatusCode::DEADLINE_EXCEEDED:
      return verdicts.timed_out;
    default:
      return verdicts.not_ok;
  }
  switch (reply.s) {
    case 0:
      return verdicts.done;
    case 1:
      return verdicts.already;
    case 3:
      return verdicts.gone;
    default:
      return verdicts.unknown;
  }
}

int conclude(const Verdicts& verdicts, const Reply& reply, const CallSite& site) {
  const Verdict& verdict = judge(verdicts, reply);
  logLine(verdict.level, site, verdict.text, reply.s);
  return verdict.result;
}

}  // namespace murlink
