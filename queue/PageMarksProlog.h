// The PostScript of page marks.
//
// What the filter draws on a page it inserts in front of the page's line `ep`. That line stands at
// the page's beginning, inside a procedure, and the procedure runs when the document shows the
// page: nothing is shown earlier, later or more often than the document says, whatever it restores
// or sets up before and behind its showpage.

#pragma once

#include <string_view>

// Behind the header comments, ahead of everything that could load showpage.
//
// - A page's procedure stays in global memory, so that no restore takes it away.
// - Names in it mean what systemdict says: documents give short names a meaning of their own.
// - pgsave is saved right before the procedure runs: restoring it undoes nothing of the page. It
//   belongs to a state in default user space, moved so that what was laid out for `paper` is
//   centred on the page's own.
// - A page's procedure that is local was read inside a procedure of the document, where a page's
//   comment had no business: it is none of a page.
// - fffbp leaves a name on the stack for each page and does nothing else; here it does nothing.
inline constexpr std::string_view kPageMarksProlog =
    R"(userdict/PageMarksDict 12 dict put
//PageMarksDict begin
/pgsave null def
/paper null def
/ending currentglobal true setglobal 1 dict exch setglobal def
/showPage/showpage load def
/copyPage/copypage load def
/bp{currentglobal true setglobal}bind def
/page{dup gcheck{ending/run 3 -1 roll put}{pop}ifelse setglobal end}bind def
/ep{pgsave restore}bind def
/centre{
paper null ne{
currentpagedevice/PageSize 2 copy known{
get aload pop paper 1 get sub 2 div exch paper 0 get sub 2 div exch translate
}{pop pop}ifelse
}if
}bind def
/finish{
systemdict begin//PageMarksDict begin
ending/run known{
gsave initgraphics centre
/pgsave save def ending/run get exec
grestore
}if
end end
}bind def
end
userdict/PageMarks{//PageMarksDict begin/fffbp where{/fffbp{}put}if}bind put
userdict/fffbp{}put
userdict/showpage{//PageMarksDict/finish get exec//PageMarksDict/showPage get exec}bind put
userdict/copypage{//PageMarksDict/finish get exec//PageMarksDict/copyPage get exec}bind put
)";

// Behind each page's %%Page line.
inline constexpr std::string_view kPageMarksOfPage = "PageMarks\nbp\n{\nep\n}page\n";
