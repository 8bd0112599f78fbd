// SPDX-License-Identifier: Apache-2.0
#include <system_error>

#include "commands/CommandError.h"
#include "commands/CommandGroups.h"
#include "commands/FaultSyntax.h"
#include "commands/Parsing.h"

namespace simulator {
namespace {

Message show(const ProxyList& proxies) {
  std::string text = describe(proxies.fault());
  std::vector<JsonObject> records;
  for (const Proxy& proxy : proxies.all()) {
    text += ", " + proxy.address() + " to " + proxy.peer();
    records.push_back(
        {{"address", proxy.address()}, {"peer", proxy.peer()}, {"accepted", proxy.accepted()}});
  }
  return ok(text, {{"fault", describe(proxies.fault())}, {"proxies", records}});
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
  words.expectEnd();
  proxies.set(fault);
  return ok(describe(fault), {{"fault", describe(fault)}});
}

}  // namespace

void addProxyCommands(Commands& commands, ProxyList& proxies) {
  commands.add({"proxy", "proxy [HOST:PORT to HOST:PORT | off]",
                "Listen on the first address and pass every connection on to the second, which a "
                "\"fault\" then disturbs. Start the side itself elsewhere, such as with --robot "
                "127.0.0.1:0. Without an address, show every proxy; off ends them.",
                with(proxies, proxy)});
  commands.add({"fault",
                "fault none|reset|refuse|silent|delay TIME|cut BYTES [close]|slow [TIME]|garbage|"
                "goaway",
                "Disturb the connections of every proxy so from now on, open ones as well: break "
                "them off, listen to none, pass nothing on, pass every chunk on late, stop after "
                "so many BYTES of the answer, answer with a byte each TIME (1s), with bytes that "
                "are not HTTP/2, or with GOAWAY frames without end.",
                with(proxies, fault)});
}

}  // namespace simulator
