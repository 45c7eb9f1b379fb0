#pragma once

#include <nlohmann/json.hpp>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// Recorded answers: files in Tests/Vectors with one JSON object a line, "in" the input and "out" the right
/// answer.
namespace TestSupport {

/// One line of such a file.
struct VectorRow {
    std::size_t line = 0;
    nlohmann::json in;
    nlohmann::json out;
};

/// All rows of the file `name`.jsonl. A missing or empty file and a line that is no row are test failures.
std::vector<VectorRow> readVectors(std::string_view name);

/// Compares `answer(in)` with "out" in every row of the file and reports each row that differs. No answer is
/// null.
void expectVectors(std::string_view name,
                   const std::function<nlohmann::json(const nlohmann::json& in)>& answer);

/// `value` as JSON, null where there is none.
template <typename Optional>
nlohmann::json orNull(const Optional& value) {
    return value ? nlohmann::json(*value) : nlohmann::json();
}

} // namespace TestSupport
