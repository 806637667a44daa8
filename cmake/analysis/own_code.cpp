// A clang-tidy check that reports nothing: it keeps the other checks out of what system headers declare.
// Findings there are never shown, and looking for them takes most of the time.
#include <clang-tidy/ClangTidyCheck.h>
#include <clang-tidy/ClangTidyModule.h>
#include <clang-tidy/ClangTidyModuleRegistry.h>
#include <clang/AST/ASTContext.h>
#include <clang/ASTMatchers/ASTMatchFinder.h>

#include <vector>

namespace {

namespace tidy = clang::tidy;
using clang::ast_matchers::MatchFinder;

class OwnCode : public tidy::ClangTidyCheck {
 public:
  using ClangTidyCheck::ClangTidyCheck;

  // clang-tidy visits the source as a whole before anything in it.
  void registerMatchers(MatchFinder* finder) override {
    finder->addMatcher(clang::ast_matchers::translationUnitDecl(), this);
  }

  void check(const MatchFinder::MatchResult& source) override {
    std::vector<clang::Decl*> own;
    for (clang::Decl* declaration : source.Context->getTranslationUnitDecl()->decls()) {
      const clang::SourceLocation place = source.SourceManager->getExpansionLoc(declaration->getLocation());
      if (!source.SourceManager->isInSystemHeader(place)) own.push_back(declaration);
    }
    source.Context->setTraversalScope(own);
  }
};

class Module : public tidy::ClangTidyModule {
 public:
  void addCheckFactories(tidy::ClangTidyCheckFactories& checks) override {
    checks.registerCheck<OwnCode>("rolu-own-code");
  }
};

const tidy::ClangTidyModuleRegistry::Add<Module> registered("rolu", "Only what is ours.");

}  // namespace
