// What is stamped on pages and what the finisher does: watermarks, finishing lines, snippets.

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "modules/watermark/Watermark.h"
#include "tests/support/Tickets.h"

namespace {

constexpr char kDocument[] =
    "%%BeginProlog\n%%EndProlog\n%%EndSetup\n%%EndPageSetup\nep\n%%EndPageSetup\nendp\n";
std::string Document(const std::string& settings) {
  return PrintedDocument(settings, kDocument);
}

std::string Stamp(const std::string& save) {
  return save + " restore /" + save +
         " save store gsave\n0.50 0.50 1.00 setrgbcolor\n"
         "/Helvetica 60 selectfont\n206.00 371.00 moveto\n0 rotate\n(DRAFT) show\ngrestore\n";
}

TEST(Watermark, StandsAtEveryBoundaryOrAtTheFirstOfItsKind) {
  const std::string definitions =
      "%%BeginProlog\nuserdict/fffInfo 2 dict dup begin\n/fffpgsave 0 def\n"
      "/fffbp{/fffpgsave save restore} bind def\n";
  const std::string prolog = definitions + "%%EndProlog\n%%EndSetup\n";
  EXPECT_EQ(Document(kWatermark), prolog + "%%EndPageSetup\nfffbp\n" + Stamp("pgsave") +
                                      "ep\n%%EndPageSetup\nfffbp\n" + Stamp("pm") + "endp\n");
  for (const char* first : {"WMARKOnlyFirstTicket=1", "WMARKOnlyFirstTicket=-1"}) {
    EXPECT_EQ(Document(kWatermark + std::string(first)),
              prolog + "%%EndPageSetup\nfffbp\n" + Stamp("pgsave") + "ep\n%%EndPageSetup\n" +
                  Stamp("pm") + "endp\n");
    EXPECT_EQ(PrintedDocument(kWatermark + std::string(first), "%%BeginProlog\n%%BeginProlog\n"),
              definitions + "%%BeginProlog\n");
  }
  for (const char* off : {"WMARKNameTicket=", "WMARKTypeTicket=1", "WMARKTypeTicket=-1"}) {
    EXPECT_EQ(Document(kWatermark + std::string(off)), kDocument) << off;
  }
  EXPECT_EQ(Document("WMARKNameTicket=x"), kDocument);  // an absent type is no text watermark
}

TEST(Watermark, TextsAndNumbersAreData) {
  const struct {
    std::string ticket, line;
  } cases[] = {
      {"WMARKTextTicket=(100%d%%s)", "(100%d%%s) show\n"},
      {"WMARKTextTicket=(" + std::string(200, 'w') + ")",
       "(" + std::string(98, 'w') + "grestore\n"},
      {"WMARKTextTicket=(Zo\u00eb)", "\n(Zo\xeb) show\n"},
      {"WMARKFontTicket=F%n", "/F%n 60 selectfont\n"},
      {"WMARKFontTicket=F\u00eb", "/F\xeb 60 selectfont\n"},
      {"WMARKhOffsetTicket=12.75", "\n218.75 371.00 moveto\n"},
      {"WMARKvOffsetTicket=-0.25", "\n206.00 370.75 moveto\n"},
      {"WMARKFontSizeTicket=-2147483649", "/Helvetica -2147483648 selectfont\n"},
      {"WMARKDensityTicket=100", "\n0.00 0.00 1.00 setrgbcolor\n"},
      {"WMARKDensityTicket=0", "\n1.00 1.00 1.00 setrgbcolor\n"},
      {"WMARKColorRTicket=-nan", "\nnan 0.50 1.00 setrgbcolor\n"},
      {"WMARKColorRTicket=-inf", "\n-inf 0.50 1.00 setrgbcolor\n"},
      {"WMARKAngleTicket=400", "\n400 rotate\n"},
  };
  for (const auto& c : cases) {
    EXPECT_NE(Document(kWatermark + c.ticket).find(c.line), std::string::npos)
        << c.ticket << Document(kWatermark + c.ticket);
  }
}

// Where a text box of 200 by 50 starts that is turned about its start and centred on the page.
TEST(Watermark, IsCentredOnThePage) {
  const struct {
    int orientation;
    double centreX, centreY;
  } pages[] = {{1, 306, 396}, {2, 396, 306}, {3, 306, 396}, {4, 396, 306}, {0, 0, 0}, {5, 0, 0}};
  for (const auto& page : pages) {
    for (const int angle : {0, 45, 90, 91, 120, 180, 181, 200, 270, 271, 300, 360, 361, -30}) {
      psOptionWatermark = {};
      psOptionWatermark.orientation = page.orientation;
      psOptionWatermark.paperWidth = 612;
      psOptionWatermark.paperHeight = 792;
      psOptionWatermark.width = 200;
      psOptionWatermark.height = 50;
      psOptionWatermark.angle = angle;
      float x = 0, y = 0;
      GetWatermarkPostion(&x, &y, 7, -3);
      const double turn = angle * std::acos(-1.0) / 180;
      const bool known = angle >= 0 && angle <= 360;  // other angles start at the offsets
      const double wantedX =
          known ? page.centreX - (100 * std::cos(turn) - 25 * std::sin(turn)) : 0;
      const double wantedY =
          known ? page.centreY - (100 * std::sin(turn) + 25 * std::cos(turn)) : 0;
      EXPECT_NEAR(x, wantedX + 7, 0.001) << page.orientation << " at " << angle;
      EXPECT_NEAR(y, wantedY - 3, 0.001) << page.orientation << " at " << angle;
    }
  }
}

std::string Snippet(const std::string& body) {
  return "[{\n%%BeginNonPPDFeatures\n" + body + "\n%%EndNonPPDFeatures\n} stopped cleartomark\n";
}

TEST(Features, InjectSnippetsWhereThePagesPerSheetWantThem) {
  const std::string separator = Snippet(
      "1 dict dup/SeparatorPages[a%d]put/Custom/ProcSet findresource/setcoverseparator get exec");
  const std::string shift =
      Snippet("12.000/Custom/ProcSet findresource/setsignatureimageshift get exec");
  const auto scale = [](const std::string& word) {
    return Snippet("/Custom/ProcSet findresource/setsignatureautoscale 2 copy known {get " + word +
                   " exch exec} {pop pop} ifelse");
  };
  const std::string both =
      "SeparatorPageListTicket=2 SeparatorPageTicket=a%d BookletMarginSwitchTicket=1 "
      "BookletMarginMMShiftTicket=12 ";
  const std::string rows = "com.apple.print.PrintSettings.PMLayoutRows..n.=";
  const std::string columns = "com.apple.print.PrintSettings.PMLayoutColumns..n.=";
  const struct {
    std::string options, prolog, setup, device;  // what stands ahead of these lines
  } cases[] = {
      {both + "AutoFitSwitchTicket=1", separator, shift + scale("true"), ""},
      {both + "AutoFitSwitchTicket=0 " + columns + "1", separator, shift + scale("false"), ""},
      {both + rows + "1 " + columns + "1", separator, shift, ""},
      {both + rows + "2 " + columns + "1", "", "", separator + shift},
      {"SeparatorPageListTicket=1 BookletMarginSwitchTicket=0 AutoFitSwitchTicket=1", "", "", ""},
      {"", "", "", ""},
  };
  const std::string prolog = "%%EndProlog\n", setup = "%%EndSetup\n",
                    device = "userdict/setpagedevice{pop}bind put\n";
  for (const auto& c : cases) {
    EXPECT_EQ(PrintedDocument(c.options, prolog + prolog + setup + device + "bp\n"),
              c.prolog + prolog + prolog + c.setup + setup + c.device + device + "bp\n")
        << c.options;
  }
}

}  // namespace
