// Short names of commands.
#include "host/ed/commandrunner.h"
#include "host/rx/text.h"

#include <unordered_map>

namespace host {
namespace {

constexpr std::pair<const wchar_t*, const wchar_t*> usualAliases[] = {
    {L"A", L"ARC"},           {L"AA", L"AREA"},
    {L"AL", L"ALIGN"},        {L"AR", L"ARRAY"},
    {L"ATT", L"ATTDEF"},      {L"ATE", L"ATTEDIT"},
    {L"B", L"BLOCK"},         {L"BH", L"HATCH"},
    {L"BR", L"BREAK"},        {L"C", L"CIRCLE"},
    {L"CH", L"PROPERTIES"},   {L"CHA", L"CHAMFER"},
    {L"CO", L"COPY"},         {L"COL", L"COLOR"},
    {L"CP", L"COPY"},         {L"D", L"DIMSTYLE"},
    {L"DAL", L"DIMALIGNED"},  {L"DAN", L"DIMANGULAR"},
    {L"DBA", L"DIMBASELINE"}, {L"DCO", L"DIMCONTINUE"},
    {L"DOR", L"DIMORDINATE"}, {L"DDI", L"DIMDIAMETER"},
    {L"DI", L"DIST"},         {L"DIV", L"DIVIDE"},
    {L"DLI", L"DIMLINEAR"},   {L"DO", L"DONUT"},
    {L"DR", L"DRAWORDER"},    {L"DRA", L"DIMRADIUS"},
    {L"DS", L"DSETTINGS"},    {L"DT", L"TEXT"},
    {L"E", L"ERASE"},         {L"ED", L"TEXTEDIT"},
    {L"EL", L"ELLIPSE"},      {L"EX", L"EXTEND"},
    {L"F", L"FILLET"},        {L"G", L"GROUP"},
    {L"H", L"HATCH"},         {L"I", L"INSERT"},
    {L"J", L"JOIN"},          {L"L", L"LINE"},
    {L"LA", L"LAYER"},        {L"LE", L"QLEADER"},
    {L"LEN", L"LENGTHEN"},    {L"LI", L"LIST"},
    {L"LO", L"LAYOUT"},       {L"LS", L"LIST"},
    {L"LT", L"LINETYPE"},     {L"LTS", L"LTSCALE"},
    {L"LW", L"LWEIGHT"},      {L"M", L"MOVE"},
    {L"MA", L"MATCHPROP"},    {L"ME", L"MEASURE"},
    {L"MI", L"MIRROR"},       {L"ML", L"MLINE"},
    {L"MS", L"MSPACE"},       {L"MT", L"MTEXT"},
    {L"MV", L"MVIEW"},        {L"O", L"OFFSET"},
    {L"OP", L"OPTIONS"},      {L"OS", L"OSNAP"},
    {L"P", L"PAN"},           {L"PE", L"PEDIT"},
    {L"PL", L"PLINE"},        {L"PO", L"POINT"},
    {L"POL", L"POLYGON"},     {L"PRINT", L"PLOT"},
    {L"PS", L"PSPACE"},       {L"PU", L"PURGE"},
    {L"R", L"REDRAW"},        {L"RA", L"REDRAWALL"},
    {L"RE", L"REGEN"},        {L"REA", L"REGENALL"},
    {L"REC", L"RECTANG"},     {L"REG", L"REGION"},
    {L"REN", L"RENAME"},      {L"RO", L"ROTATE"},
    {L"S", L"STRETCH"},       {L"SC", L"SCALE"},
    {L"SCR", L"SCRIPT"},      {L"SET", L"SETVAR"},
    {L"SN", L"SNAP"},         {L"SO", L"SOLID"},
    {L"SPL", L"SPLINE"},      {L"ST", L"STYLE"},
    {L"T", L"MTEXT"},         {L"TO", L"TOOLBAR"},
    {L"TR", L"TRIM"},         {L"UN", L"UNITS"},
    {L"V", L"VIEW"},          {L"W", L"WBLOCK"},
    {L"X", L"EXPLODE"},       {L"XL", L"XLINE"},
    {L"XR", L"XREF"},         {L"Z", L"ZOOM"},
    {L"-B", L"-BLOCK"},       {L"-H", L"-HATCH"},
    {L"-I", L"-INSERT"},      {L"-LA", L"-LAYER"},
    {L"-LT", L"-LINETYPE"},   {L"-PU", L"-PURGE"},
    {L"-ST", L"-STYLE"},      {L"-UN", L"-UNITS"},
    {L"-W", L"-WBLOCK"},      {L"-V", L"-VIEW"},
    {L"PR", L"PROPERTIES"},   {L"PRCLOSE", L"PROPERTIESCLOSE"},
    {L"MO", L"PROPERTIES"},   {L"OV", L"OVERKILL"},
};

using AliasTable = std::unordered_map<std::wstring, std::wstring, NoCaseHash, NoCaseEqual>;

AliasTable& aliases() {
    static AliasTable table(std::begin(usualAliases), std::end(usualAliases));
    return table;
}

} // namespace

std::wstring commandOfAlias(std::wstring_view alias) {
    const auto found = aliases().find(alias);
    return found != aliases().end() ? found->second : std::wstring();
}

void setCommandAlias(std::wstring_view alias, std::wstring_view command) {
    aliases().insert_or_assign(std::wstring(alias), std::wstring(command));
}

} // namespace host
