#pragma once

#include <string>
#include <vector>

namespace ibis::testing {

/// Notes whole message texts that a test expects, and gives them back.
std::vector<std::string> proven(std::vector<std::string> texts);

/// Identifiers of the message table's rows that no text noted so far is an instance of.
std::vector<std::string> unprovenMessages();

}  // namespace ibis::testing
