#include "simulator/desk/control_requests.h"

#include <string>
#include <vector>

#include "simulator/desk/readings.h"

namespace rolu_sim {

Json AcceptRequest() {
  return {{"ok", true}};
}

Json RefuseRequest(const std::string& error, const char* kind) {
  return {{"ok", false}, {"error", error}, {"kind", kind}};
}

Json AnswerDo(Desk& desk, const Json& request) {
  Action action;
  try {
    if (!request["do"].is_string()) throw UsageError("\"do\" is a verb");
    const std::string name = request["do"].get<std::string>();
    action.verb = FindVerb(name);
    if (action.verb == nullptr) throw UsageError(UnknownVerb(name));
    action.arguments = CheckArguments(*action.verb, request, {"do"});
  } catch (const UsageError& problem) {
    return RefuseRequest(problem.what(), "usage");
  }
  Json answer = AcceptRequest();
  const std::string remark = desk.Apply(action);
  if (!remark.empty()) answer["remark"] = remark;
  return answer;
}

Json AnswerGet(Desk& desk, const Json& names) {
  std::vector<std::string> wanted;
  try {
    wanted = names.get<std::vector<std::string>>();
    for (const std::string& name : wanted) CheckReading(name);
  } catch (const Json::type_error&) {
    return RefuseRequest("\"get\" is a list of names", "usage");
  } catch (const UsageError& problem) {
    return RefuseRequest(problem.what(), "usage");
  }
  Json answer = AcceptRequest();
  answer["board"] = desk.Locked([&] { return ReadBoard(desk, wanted); });
  return answer;
}

}  // namespace rolu_sim
