#include "Tests/Support/Vectors.h"

#include <gtest/gtest.h>

#include <exception>
#include <filesystem>
#include <fstream>

namespace TestSupport {

std::vector<VectorRow> readVectors(std::string_view name) {
    const auto path = std::filesystem::path(KEYLOFT_TEST_DATA) / "Vectors" / (std::string(name) + ".jsonl");
    std::vector<VectorRow> rows;
    std::ifstream file(path, std::ios::binary);
    std::string line;
    for (std::size_t number = 1; std::getline(file, line); ++number) {
        if (line.find_first_not_of(" \t\r") == std::string::npos) {
            continue;
        }
        auto row = nlohmann::json::parse(line, nullptr, false);
        if (!row.is_object() || !row.contains("in") || !row.contains("out")) {
            ADD_FAILURE() << path << ":" << number << ": not a row";
            continue;
        }
        rows.push_back({.line = number, .in = row["in"], .out = row["out"]});
    }
    EXPECT_FALSE(rows.empty()) << path << " has no rows, or cannot be read";
    return rows;
}

void expectVectors(std::string_view name,
                   const std::function<nlohmann::json(const nlohmann::json& in)>& answer) {
    for (const VectorRow& row : readVectors(name)) {
        try {
            const nlohmann::json got = answer(row.in);
            if (got != row.out) {
                ADD_FAILURE() << name << ".jsonl:" << row.line << "\n  in:       " << row.in
                              << "\n  expected: " << row.out << "\n  got:      "
                              << got.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
            }
        } catch (const std::exception& error) {
            ADD_FAILURE() << name << ".jsonl:" << row.line << "\n  in: " << row.in
                          << "\n  threw: " << error.what();
        }
    }
}

} // namespace TestSupport
