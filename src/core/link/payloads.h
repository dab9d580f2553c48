/// From the words of a request, as its caller gave them, to what goes out.
#pragma once

#include "link/analyzer_link.h"

#include <map>

namespace busquill {

using EncoderMap = std::map<std::int32_t, CAnalyzerLink::Encoder>;

/// Makes the payload of a request and replaces its address and length words by the register and
/// the byte count of its command, where the command has fixed ones.
void EncodeParameters(LinkRequest& request, const EncoderMap& encoders);

} // namespace busquill
