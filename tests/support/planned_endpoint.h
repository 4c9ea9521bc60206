#pragma once

#include <memory>
#include <utility>

#include "endpoint/conversion.h"

namespace dorvane::test {

/// How a test has tables converted.
struct Way {
  const char* name;
  CopyStrategy strategy = CopyStrategy::Blocks;
  int tables_at_once = 1;
};

/// An endpoint whose conversions copy their rows by a plan of one's own.
template <typename Endpoint>
class PlannedEndpoint : public Endpoint {
 public:
  using Endpoint::Endpoint;
  CopyPlan plan;

  void Take(const Way& way) {
    plan.strategy = way.strategy;
    ConversionOptions options = this->Options();
    options.tables_at_once = way.tables_at_once;
    this->SetOptions(options);
  }

 protected:
  std::unique_ptr<Conversion> MakeConversion(Conversion::Context context) override {
    context.copy = plan;
    return Endpoint::MakeConversion(std::move(context));
  }
};

}  // namespace dorvane::test
