// A plug-in of clang-tidy that shows the checks the project's own declarations alone. Without it
// each check walks through all that Qt and the standard library declare, in every file, and may say
// nothing about it: five sixths of the time.
#include <clang/AST/ASTConsumer.h>
#include <clang/AST/ASTContext.h>
#include <clang/Frontend/CompilerInstance.h>
#include <clang/Frontend/FrontendPluginRegistry.h>

#include <memory>
#include <string>
#include <vector>

namespace {

class OwnDeclarations : public clang::ASTConsumer
{
public:
    void HandleTranslationUnit(clang::ASTContext &context) override
    {
        std::vector<clang::Decl *> own;
        for (clang::Decl *declaration : context.getTranslationUnitDecl()->decls()) {
            if (!context.getSourceManager().isInSystemHeader(declaration->getLocation()))
                own.push_back(declaration);
        }
        context.setTraversalScope(own);
    }
};

class OwnCode : public clang::PluginASTAction
{
protected:
    std::unique_ptr<clang::ASTConsumer> CreateASTConsumer(clang::CompilerInstance & /*compiler*/,
                                                          llvm::StringRef /*file*/) override
    {
        return std::make_unique<OwnDeclarations>();
    }

    bool ParseArgs(const clang::CompilerInstance & /*compiler*/,
                   const std::vector<std::string> & /*arguments*/) override
    {
        return true;
    }

    ActionType getActionType() override { return AddBeforeMainAction; }
};

const clang::FrontendPluginRegistry::Add<OwnCode>
    registration("own-code", "shows the checks the project's own declarations alone");

} // namespace
