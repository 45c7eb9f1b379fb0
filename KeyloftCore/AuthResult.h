#pragma once

#include "KeyloftCore/ResponseMode.h"
#include "Platform/Foundation/URL.h"

#include <map>
#include <string>

namespace KeyloftCore {

/// The provider's answer to a request. A plain value.
struct AuthResult {
    /// The request's.
    ResponseMode responseMode = ResponseMode::query;
    /// The request's.
    Platform::URL redirectURI;
    /// The response's parameters, the authorization code and the state for example.
    std::map<std::string, std::string> params;

    friend bool operator==(const AuthResult&, const AuthResult&) = default;
};

} // namespace KeyloftCore
