// SPDX-License-Identifier: Apache-2.0
#include <system_error>

#include "commands/CommandError.h"
#include "commands/CommandGroups.h"
#include "commands/FaultSyntax.h"
#include "commands/Parsing.h"

namespace simulator {
namespace {

Message show(const ProxyList& proxies) {
  const std::string of_all = describe(proxies.fault());
  std::string text = of_all;
  std::vector<JsonObject> records;
  for (const Proxy& proxy : proxies.all()) {
    const std::string fault = describe(proxy.fault());
    text += ", " + proxy.address() + " to " + proxy.peer() +
            (fault == of_all ? "" : " (" + fault + ")");
    records.push_back({{"address", proxy.address()},
                       {"peer", proxy.peer()},
                       {"accepted", proxy.accepted()},
                       {"fault", fault}});
  }
  return ok(text, {{"fault", of_all}, {"proxies", records}});
}

Message proxy(ProxyList& proxies, WordReader& words) {
  if (words.done()) {
    return show(proxies);
  }
  if (words.takeIf("off")) {
    words.expectEnd();
    proxies.clear();
    return ok();
  }
  const std::string address = parseIpv4Address(words.take());
  if (!words.takeIf("to")) {
    expected("\"to\"", words.peek());
  }
  const std::string peer = parseIpv4Address(words.take());
  words.expectEnd();
  try {
    const std::string& taken = proxies.add(address, peer);
    return ok(taken + " to " + peer, {{"address", taken}});
  } catch (const std::system_error& problem) {
    throw CommandError(problem.what());
  }
}

Message fault(ProxyList& proxies, WordReader& words) {
  const Fault fault = takeFault(words);
  if (!words.takeIf("on")) {
    words.expectEnd();
    proxies.set(fault);
    return ok(describe(fault), {{"fault", describe(fault)}});
  }
  const std::string address = parseIpv4Address(words.take());
  words.expectEnd();
  if (!proxies.set(fault, address)) {
    throw CommandError("there is no proxy on " + address + ": \"proxy\" lists them");
  }
  return ok(describe(fault) + " on " + address, {{"fault", describe(fault)}, {"address", address}});
}

}  // namespace

void addProxyCommands(Commands& commands, ProxyList& proxies) {
  commands.add(
      {"proxy", "proxy [HOST:PORT to HOST:PORT | off]",
       "Listen on the first address and forward every connection to the second; \"fault\" disturbs "
       "these connections. The peer itself must then listen elsewhere, for example with --robot "
       "127.0.0.1:0. Without arguments, list the proxies; \"off\" removes them.",
       with(proxies, proxy)});
  commands.add(
      {"fault",
       "fault none|reset|refuse|silent|delay TIME|cut BYTES [close]|slow [TIME]|garbage|"
       "goaway [on HOST:PORT]",
       "Disturb all connections through proxies, open and new ones: reset them (reset), "
       "accept none (refuse), forward nothing (silent), forward all data TIME later "
       "(delay), forward BYTES of the answer and then nothing, or close (cut), forward "
       "the answer one byte per TIME, 1s by default (slow), or answer with bytes that are "
       "not HTTP/2 (garbage) or with endless GOAWAY frames (goaway). With \"on\", only for "
       "the proxy that listens on that address, until the next fault for it or for all.",
       with(proxies, fault)});
}

}  // namespace simulator
