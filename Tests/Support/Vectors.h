#pragma once

#include <nlohmann/json.hpp>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// Test vectors: files in Tests/Vectors with one JSON object per line. "in" is the input, "out" the expected
/// answer.
namespace TestSupport {

/// One line of such a file.
struct VectorRow {
    std::size_t line = 0;
    nlohmann::json in;
    nlohmann::json out;
};

/// Returns all rows of the file `name`.jsonl. A missing or empty file and an invalid line are test failures.
std::vector<VectorRow> readVectors(std::string_view name);

/// Compares `answer(in)` with "out" for every row of the file and reports each row that differs. `answer`
/// returns null if there is no answer.
void expectVectors(std::string_view name,
                   const std::function<nlohmann::json(const nlohmann::json& in)>& answer);

/// Returns `value` as JSON, or null if it is absent.
template <typename Optional>
nlohmann::json orNull(const Optional& value) {
    return value ? nlohmann::json(*value) : nlohmann::json();
}

} // namespace TestSupport
