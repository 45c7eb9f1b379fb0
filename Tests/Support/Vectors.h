#pragma once

#include <nlohmann/json.hpp>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// Test vectors are files in Tests/Vectors with one JSON object per line. The member "in" is the input, and
/// "out" is the expected output.
namespace TestSupport {

/// One line of a vector file.
struct VectorRow {
    std::size_t line = 0;
    nlohmann::json in;
    nlohmann::json out;
};

/// Returns all rows of the file `name`.jsonl. Fails the test if the file is missing or empty, or if a line is
/// invalid.
std::vector<VectorRow> readVectors(std::string_view name);

/// Calls `answer` with the input of every row in the file, and fails the test for each row whose output
/// differs. `answer` must return null if there is no output.
void expectVectors(std::string_view name,
                   const std::function<nlohmann::json(const nlohmann::json& in)>& answer);

/// Returns the value as JSON, or null if there is no value.
template <typename Optional>
nlohmann::json orNull(const Optional& value) {
    return value ? nlohmann::json(*value) : nlohmann::json();
}

} // namespace TestSupport
