#include "ui/testsuites/backplane_child.h"

#include "testsuites/backplane_document.h"
#include "ui/framework/help_page.h"
#include "ui/testsuites/backplane_view.h"
#include "ui/testsuites/help_topics.h"

namespace busquill {

CBackplaneTestChild::CBackplaneTestChild(const FeatureParts& parts, CBackplaneTestDoc& document)
    : CCheckSuiteChild(document, "Backplane Test", "backplane") {
    SetHelpPage(*this, "backplane.md");
    SetSuite(*new CBackplaneTestView(document, ViewParts(parts, HelpTopic::Backplane)));
}

} // namespace busquill
