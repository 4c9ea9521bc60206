#pragma once

#include <memory>
#include <utility>

#include "endpoint/conversion.h"

namespace dorvane::test {

/// An endpoint whose conversions copy their rows by a plan of one's own.
template <typename Endpoint>
class PlannedEndpoint : public Endpoint {
 public:
  using Endpoint::Endpoint;
  CopyPlan plan;

 protected:
  std::unique_ptr<Conversion> MakeConversion(Conversion::Context context) override {
    context.copy = plan;
    return Endpoint::MakeConversion(std::move(context));
  }
};

}  // namespace dorvane::test
