#include "simulator/control/control_requests.h"

#include <string>
#include <vector>

#include "simulator/control/readings.h"

namespace rolu_sim {
namespace {

constexpr char kUsage[] = "usage";

}  // namespace

Json AcceptRequest() {
  return {{"ok", true}};
}

Json RefuseRequest(const std::string& error, const char* kind) {
  return {{"ok", false}, {"error", error}, {"kind", kind}};
}

Json AnswerDo(Desk& desk, const Json& request) {
  if (!request["do"].is_string()) return RefuseRequest("\"do\" is a verb", kUsage);
  const std::string name = request["do"].get<std::string>();
  const Verb* const verb = FindVerb(name);
  if (verb == nullptr) return RefuseRequest(UnknownVerb(name), kUsage);
  std::vector<Problem> problems;
  const Arguments arguments = CheckArguments(*verb, request, {"do"}, problems);
  if (!problems.empty()) return RefuseRequest(problems.front().text, kUsage);
  Json answer = AcceptRequest();
  const std::string remark = desk.Apply({verb, arguments});
  if (!remark.empty()) answer["remark"] = remark;
  return answer;
}

Json AnswerGet(Desk& desk, const Json& names) {
  if (!names.is_array()) return RefuseRequest("\"get\" is a list of names", kUsage);
  std::vector<std::string> wanted;
  for (const Json& name : names) {
    if (!name.is_string()) return RefuseRequest("\"get\" is a list of names", kUsage);
    wanted.push_back(name.get<std::string>());
    if (FindReading(wanted.back()) == nullptr) return RefuseRequest(UnknownReading(wanted.back()), kUsage);
  }
  Json answer = AcceptRequest();
  answer["board"] = desk.Locked([&] { return ReadBoard(desk, wanted); });
  return answer;
}

}  // namespace rolu_sim
