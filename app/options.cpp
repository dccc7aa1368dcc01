// Reading of the command line.
#include "app/options.h"

#include <functional>
#include <map>

namespace app {

std::string helpText() {
    return "用法:\n"
           "  qdvhost [图形文件]                               打开窗口\n"
           "  qdvhost --script 文件 [选项] [图形文件]          不开窗口，运行脚本；- 表示标准输入\n"
           "选项:\n"
           "  --save 文件        运行后保存图形（.dxf，按扩展名）；可重复\n"
           "  --plot 文件        运行后把模型空间的范围绘成图（.pdf .png .svg）；可重复\n"
           "  --dump 文件        运行后写出图形内容的文本，供比较；可重复\n"
           "  --module 文件      要加载的模块；可重复；默认是程序旁的 QDVCommonTools.arx；none 表示不加载\n"
           "  --settings 文件夹  设置保存在哪里（默认: 用户的配置文件夹）\n"
           "  --help, --version\n"
           "退出码: 0 全部完成；1 某行脚本或某个文件失败；2 用法错误\n";
}

std::optional<Options> parseOptions(const std::vector<std::string>& arguments, std::string& error) {
    Options options;
    const std::map<std::string, std::function<void(const std::string&)>> valued = {
        {"--script", [&](const std::string& value) { options.script = value; }},
        {"--save", [&](const std::string& value) { options.saves.emplace_back(value); }},
        {"--plot", [&](const std::string& value) { options.plots.emplace_back(value); }},
        {"--dump", [&](const std::string& value) { options.dumps.emplace_back(value); }},
        {"--module",
         [&](const std::string& value) {
             options.loadsDefaultModule = false;
             if (value != "none") {
                 options.modules.emplace_back(value);
             }
         }},
        {"--settings", [&](const std::string& value) { options.settings = value; }}};
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const std::string& argument = arguments[index];
        if (argument == "--help") {
            options.help = true;
        } else if (argument == "--version") {
            options.version = true;
        } else if (const auto option = valued.find(argument); option != valued.end()) {
            if (++index == arguments.size()) {
                error = "选项 " + argument + " 缺少值";
                return std::nullopt;
            }
            option->second(arguments[index]);
        } else if (argument.size() > 1 && argument.front() == '-') {
            error = "未知选项 " + argument;
            return std::nullopt;
        } else if (options.drawing) {
            error = "只能给出一个图形文件: " + argument;
            return std::nullopt;
        } else {
            options.drawing = argument;
        }
    }
    const bool needsScript = !options.saves.empty() || !options.plots.empty() || !options.dumps.empty();
    if (needsScript && !options.script) {
        error = "--save、--plot 和 --dump 要与 --script 一起使用";
        return std::nullopt;
    }
    return options;
}

} // namespace app
