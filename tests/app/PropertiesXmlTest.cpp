#include "TempDataHome.h"
#include "clsPropertiesXML.h"

class PropertiesXmlTest : public TempDataHome {};

TEST_F(PropertiesXmlTest, Placeholder) { EXPECT_TRUE(true); }
