// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "mav_host/xml/Tree.h"
#include "support/Doubles.h"

using mav_host::xml::BindingError;
using mav_host::xml::Limits;
using mav_host::xml::Tree;

namespace {

TEST(XmlTree, KeepsAllThatStandsInADocument) {
    const std::string text =
        "\xEF\xBB\xBF<?xml version='1.0' encoding='ISO-8859-1' standalone='no'?><!-- before -->"
        "<a:r xmlns:a='u' xmlns='v' b='&quot;&#10;&lt;&amp;'  a:b=''><?do it now?>"
        "  <empty>\n </empty><!--two\n lines--><mixed x='1'> t&gt;&#13;<i>k</i><![CDATA[<&]]> "
        "</mixed>"
        "<keep xml:space='preserve'> <k/></keep></a:r><?end?>";
    const std::string written =
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\n"
        "<!-- before -->\n"
        "<a:r\n\txmlns:a=\"u\"\n\txmlns=\"v\"\n\tb=\"&quot;&#10;&lt;&amp;\"\n\ta:b=\"\">\n"
        "\t<?do it now?>\n"
        "\t<empty/>\n"
        "\t<!--two\n lines-->\n"
        "\t<mixed\n\t\tx=\"1\"> t&gt;&#13;<i>k</i><![CDATA[<&]]> </mixed>\n"
        "\t<keep\n\t\txml:space=\"preserve\"> <k/></keep>\n"
        "</a:r>\n"
        "<?end?>\n";
    EXPECT_EQ(Tree::parse(text.substr(3)).write(), written);
    EXPECT_EQ(Tree::parse(written).write(), written);
}

TEST(XmlTree, RefusesWhatAFormatRefuses) {
    Limits few;
    few.elements = 1;
    EXPECT_NO_THROW(Tree::parse("<a b='' c=''>x</a>", few));
    EXPECT_THROW(Tree::parse("<a b='' c=''>x<!----></a>", few), BindingError);
    EXPECT_THROW(Tree::parse("<!DOCTYPE a><a/>"), BindingError);
}

}  // namespace
