#pragma once

#include "simulator/desk/desk.h"
#include "simulator/json.h"

namespace rolu_sim {

// Carries out the requests "do" and "get" and gives their answers. AnswerDo throws what the verb throws.
Json AnswerDo(Desk& desk, const Json& request);
Json AnswerGet(Desk& desk, const Json& names);

Json AcceptRequest();
Json RefuseRequest(const std::string& error, const char* kind);

}  // namespace rolu_sim
