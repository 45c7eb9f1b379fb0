#pragma once

#include "KeyloftCore/ResponseMode.h"
#include "Platform/Foundation/URL.h"

#include <map>
#include <string>

namespace KeyloftCore {

/// The provider's response to an authorization request. A plain value type.
struct AuthResult {
    /// The response mode of the request.
    ResponseMode responseMode = ResponseMode::query;
    /// The redirect URI of the request.
    Platform::URL redirectURI;
    /// The parameters of the response, for example "code" and "state".
    std::map<std::string, std::string> params;

    friend bool operator==(const AuthResult&, const AuthResult&) = default;
};

} // namespace KeyloftCore
