<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR" sourcelanguage="en">
<context>
    <name>Cards</name>
    <message>
        <source>&amp;Add picture…</source>
        <translation>&amp;Ajouter une image…</translation>
    </message>
    <message>
        <source>Add a picture from a file</source>
        <translation>Ajouter une image à partir d’un fichier</translation>
    </message>
    <message>
        <source>Add a picture</source>
        <translation>Ajouter une image</translation>
    </message>
    <message>
        <source>Pictures (*.%1)</source>
        <translation>Images (*.%1)</translation>
    </message>
    <message>
        <source>Pictures can be dropped here.</source>
        <translation>Glissez des images ici.</translation>
    </message>
    <message>
        <source>Cards</source>
        <translation>Cartes</translation>
    </message>
    <message>
        <source>Cards (%1 of %2)</source>
        <translation>Cartes (%1 sur %2)</translation>
    </message>
    <message>
        <source>Start the lesson first.</source>
        <translation>Commencez d’abord le cours.</translation>
    </message>
    <message>
        <source>Add a picture first.</source>
        <translation>Ajoutez d’abord une image.</translation>
    </message>
    <message>
        <source>The pictures of the lesson</source>
        <translation>Les images du cours</translation>
    </message>
    <message>
        <source>&amp;Show to learners</source>
        <translation>&amp;Montrer à la classe</translation>
    </message>
    <message>
        <source>Show this card on the learners’ devices</source>
        <translation>Montrer cette carte sur les appareils des élèves</translation>
    </message>
</context>
<context>
    <name>DeskWindow</name>
    <message>
        <source>Lesson at the desk</source>
        <translation>Cours au bureau</translation>
    </message>
    <message>
        <source>Desk</source>
        <translation>Bureau</translation>
    </message>
    <message>
        <source>Its last command: %1</source>
        <translation>Sa dernière commande&#xa0;: %1</translation>
    </message>
    <message>
        <source>It wanted what could not be done: %1</source>
        <translation>Elle a demandé l’impossible&#xa0;: %1</translation>
    </message>
    <message>
        <source>Close the desk</source>
        <translation>Fermer le bureau</translation>
    </message>
    <message>
        <source>Log in to your classroom</source>
        <translation>Connectez-vous à votre classe</translation>
    </message>
    <message>
        <source>&amp;Service</source>
        <translation>&amp;Service</translation>
    </message>
    <message>
        <source>&amp;User name</source>
        <translation>&amp;Utilisateur</translation>
    </message>
    <message>
        <source>&amp;Password</source>
        <translation>Mot de &amp;passe</translation>
    </message>
    <message>
        <source>Remote control</source>
        <translation>Télécommande</translation>
    </message>
    <message>
        <source>The service is being asked.</source>
        <translation>Le service est interrogé.</translation>
    </message>
    <message>
        <source>Fill in the service, your user name and your password first.</source>
        <translation>Indiquez d’abord le service, votre nom d’utilisateur et votre mot de passe.</translation>
    </message>
    <message>
        <source>The lesson is open.</source>
        <translation>Le cours est ouvert.</translation>
    </message>
    <message>
        <source>No lesson is open.</source>
        <translation>Aucun cours n’est ouvert.</translation>
    </message>
    <message>
        <source>Nothing has been asked yet.</source>
        <translation>Rien n’a encore été demandé.</translation>
    </message>
    <message>
        <source>Learners join at %1 with this code.</source>
        <translation>Les élèves rejoignent le cours sur %1 avec ce code.</translation>
    </message>
    <message>
        <source>Start a lesson, and learners can join.</source>
        <translation>Commencez un cours, et les élèves pourront le rejoindre.</translation>
    </message>
    <message numerus="yes">
        <source>A lesson with %n learners is open. It ends for everybody.</source>
        <translation>
            <numerusform>Un cours avec %n élève est ouvert. Il se terminera pour tous.</numerusform>
            <numerusform>Un cours avec %n élèves est ouvert. Il se terminera pour tous.</numerusform>
        </translation>
    </message>
    <message>
        <source>Summary</source>
        <translation>Bilan</translation>
    </message>
    <message>
        <source>Each poll and assessment</source>
        <translation>Chaque sondage et évaluation</translation>
    </message>
    <message>
        <source>Asked</source>
        <translation>Demandé</translation>
    </message>
    <message>
        <source>Answered</source>
        <translation>Répondu</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Juste</translation>
    </message>
    <message>
        <source>Most frequent answer</source>
        <translation>Réponse la plus fréquente</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 sur %2</translation>
    </message>
    <message>
        <source>Learners who took part: %1</source>
        <translation>Élèves participants&#xa0;: %1</translation>
    </message>
    <message>
        <source>Save the results</source>
        <translation>Enregistrer les résultats</translation>
    </message>
    <message>
        <source>results.csv</source>
        <translation>resultats.csv</translation>
    </message>
    <message>
        <source>Results (*.csv *.json)</source>
        <translation>Résultats (*.csv *.json)</translation>
    </message>
    <message>
        <source>The address of the classroom service</source>
        <translation>L’adresse du service de classe</translation>
    </message>
    <message>
        <source>Your name at the service</source>
        <translation>Votre nom auprès du service</translation>
    </message>
    <message>
        <source>Your password there</source>
        <translation>Votre mot de passe auprès de lui</translation>
    </message>
    <message>
        <source>&amp;Log in</source>
        <translation>&amp;Connexion</translation>
    </message>
    <message>
        <source>Log in to the service</source>
        <translation>Se connecter au service</translation>
    </message>
    <message>
        <source>Start &amp;lesson</source>
        <translation>&amp;Commencer le cours</translation>
    </message>
    <message>
        <source>Open the lesson, so that learners can join</source>
        <translation>Ouvrir le cours pour que les élèves le rejoignent</translation>
    </message>
    <message>
        <source>&amp;End lesson</source>
        <translation>T&amp;erminer le cours</translation>
    </message>
    <message>
        <source>End the lesson for everybody</source>
        <translation>Terminer le cours pour tous</translation>
    </message>
    <message>
        <source>End the lesson</source>
        <translation>Terminer le cours</translation>
    </message>
    <message>
        <source>Summar&amp;y…</source>
        <translation>&amp;Bilan…</translation>
    </message>
    <message>
        <source>How polls and assessments came out</source>
        <translation>Comment se sont terminés sondages et évaluations</translation>
    </message>
    <message>
        <source>Save &amp;results…</source>
        <translation>Enregist&amp;rer…</translation>
    </message>
    <message>
        <source>Write who answered what to a file</source>
        <translation>Écrire dans un fichier qui a répondu quoi</translation>
    </message>
    <message>
        <source>Log &amp;out</source>
        <translation>Déc&amp;onnexion</translation>
    </message>
    <message>
        <source>End what is open and log out</source>
        <translation>Terminer ce qui est ouvert et se déconnecter</translation>
    </message>
    <message>
        <source>Log out</source>
        <translation>Se déconnecter</translation>
    </message>
    <message>
        <source>It can join with the lesson’s code.</source>
        <translation>Elle peut rejoindre le cours avec son code.</translation>
    </message>
    <message>
        <source>&amp;Dismiss</source>
        <translation>&amp;Fermer</translation>
    </message>
    <message>
        <source>Close this message</source>
        <translation>Fermer ce message</translation>
    </message>
    <message>
        <source>Try &amp;now</source>
        <translation>Essa&amp;yer maintenant</translation>
    </message>
    <message>
        <source>Try to open the channel at once</source>
        <translation>Essayer tout de suite d’ouvrir la liaison</translation>
    </message>
    <message>
        <source>How far it is</source>
        <translation>L’avancement</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Avancement</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>An&amp;nuler</translation>
    </message>
    <message>
        <source>Do not wait any longer</source>
        <translation>Ne plus attendre</translation>
    </message>
    <message>
        <source>What you do meanwhile is done when it is back.</source>
        <translation>Ce que vous faites entre-temps sera fait à son retour.</translation>
    </message>
</context>
<context>
    <name>Learners</name>
    <message>
        <source>Learners</source>
        <translation>Élèves</translation>
    </message>
    <message>
        <source>Learners (%1)</source>
        <translation>Élèves (%1)</translation>
    </message>
    <message>
        <source>Start the lesson first.</source>
        <translation>Commencez d’abord le cours.</translation>
    </message>
    <message>
        <source>Choose a learner first.</source>
        <translation>Choisissez d’abord un élève.</translation>
    </message>
    <message>
        <source>Who is here; a tick shows who has answered</source>
        <translation>Qui est là&#xa0;; une coche marque qui a répondu</translation>
    </message>
    <message>
        <source>Show only who has not answered</source>
        <translation>Ne montrer que ceux qui n’ont pas répondu</translation>
    </message>
    <message>
        <source>&amp;Not answered yet</source>
        <translation>Pas encore répon&amp;du</translation>
    </message>
    <message>
        <source>Loc&amp;k</source>
        <translation>&amp;Verrouiller</translation>
    </message>
    <message>
        <source>Have everybody look up, until you unlock or ask something</source>
        <translation>Faire lever les yeux à tous, jusqu’à ce que vous déverrouilliez ou posiez une question</translation>
    </message>
    <message>
        <source>Remo&amp;ve</source>
        <translation>E&amp;xclure</translation>
    </message>
    <message>
        <source>Send the chosen learner’s device away</source>
        <translation>Renvoyer l’appareil de l’élève choisi</translation>
    </message>
</context>
<context>
    <name>Polls</name>
    <message>
        <source>One question, or several at each learner’s own pace</source>
        <translation>Une question, ou plusieurs au rythme de chacun</translation>
    </message>
    <message>
        <source>What is asked</source>
        <translation>Ce qui est demandé</translation>
    </message>
    <message>
        <source>Poll</source>
        <translation>Sondage</translation>
    </message>
    <message>
        <source>Assessment</source>
        <translation>Évaluation</translation>
    </message>
    <message>
        <source>Red; green; blue</source>
        <translation>Rouge&#xa0;; vert&#xa0;; bleu</translation>
    </message>
    <message>
        <source>&amp;Kind</source>
        <translation>&amp;Genre</translation>
    </message>
    <message>
        <source>Question</source>
        <translation>Question</translation>
    </message>
    <message>
        <source>Num&amp;ber of options</source>
        <translation>Nombre d’o&amp;ptions</translation>
    </message>
    <message>
        <source>Opt&amp;ions</source>
        <translation>Opt&amp;ions</translation>
    </message>
    <message>
        <source>Ri&amp;ght answer</source>
        <translation>&amp;Juste</translation>
    </message>
    <message>
        <source>Add &amp;question</source>
        <translation>Ajouter une &amp;question</translation>
    </message>
    <message>
        <source>Take over the question of the page “Poll”</source>
        <translation>Reprendre la question de la page «&#xa0;Sondage&#xa0;»</translation>
    </message>
    <message>
        <source>Start assess&amp;ment</source>
        <translation>Commencer l’éva&amp;luation</translation>
    </message>
    <message>
        <source>Have the learners work through the questions</source>
        <translation>Faire traiter les questions par les élèves</translation>
    </message>
    <message>
        <source>Stop assessment</source>
        <translation>Arrêter l’évaluation</translation>
    </message>
    <message>
        <source>Take no more answers</source>
        <translation>Ne plus prendre de réponses</translation>
    </message>
    <message>
        <source>Res&amp;ume</source>
        <translation>Contin&amp;uer</translation>
    </message>
    <message>
        <source>Pa&amp;use</source>
        <translation>Pa&amp;use</translation>
    </message>
    <message>
        <source>Fill in a question on the page “Poll”, then add it here.</source>
        <translation>Remplissez une question à la page «&#xa0;Sondage&#xa0;», puis ajoutez-la ici.</translation>
    </message>
    <message>
        <source>Questions: %1</source>
        <translation>Questions&#xa0;: %1</translation>
    </message>
    <message>
        <source>Start the lesson first.</source>
        <translation>Commencez d’abord le cours.</translation>
    </message>
    <message>
        <source>A poll is running: stop it first.</source>
        <translation>Un sondage est en cours&#xa0;: arrêtez-le d’abord.</translation>
    </message>
    <message>
        <source>No poll is running.</source>
        <translation>Aucun sondage n’est en cours.</translation>
    </message>
    <message>
        <source>Add a question first.</source>
        <translation>Ajoutez d’abord une question.</translation>
    </message>
    <message>
        <source>This kind of poll has no number of options to choose.</source>
        <translation>Ce genre de sondage n’a pas de nombre d’options à choisir.</translation>
    </message>
    <message>
        <source>There are as many as texts.</source>
        <translation>Il y en a autant que de textes.</translation>
    </message>
    <message>
        <source>This kind of poll has no options.</source>
        <translation>Ce genre de sondage n’a pas d’options.</translation>
    </message>
    <message>
        <source>Nothing has been asked yet.</source>
        <translation>Rien n’a encore été demandé.</translation>
    </message>
    <message>
        <source>An assessment is running: stop it first.</source>
        <translation>Une évaluation est en cours&#xa0;: arrêtez-la d’abord.</translation>
    </message>
    <message>
        <source>No assessment is running.</source>
        <translation>Aucune évaluation n’est en cours.</translation>
    </message>
    <message>
        <source>Start a poll: the answers appear here as they come in.</source>
        <translation>Lancez un sondage&#xa0;: les réponses s’affichent ici à mesure qu’elles arrivent.</translation>
    </message>
    <message>
        <source>What the learners are asked for</source>
        <translation>Ce qui est demandé aux élèves</translation>
    </message>
    <message>
        <source>Kind of poll</source>
        <translation>Genre de sondage</translation>
    </message>
    <message>
        <source>What the learners read; empty: you ask in your own words</source>
        <translation>Ce que lisent les élèves&#xa0;; vide&#xa0;: vous posez la question vous-même</translation>
    </message>
    <message>
        <source>How many options the learners choose from</source>
        <translation>Le nombre d’options au choix des élèves</translation>
    </message>
    <message>
        <source>What the options say, with a semicolon between them</source>
        <translation>Ce que disent les options, séparées par un point-virgule</translation>
    </message>
    <message>
        <source>The right answer, options by their letters or numbers</source>
        <translation>La bonne réponse, les options par leurs lettres ou leurs numéros</translation>
    </message>
    <message>
        <source>Start &amp;poll</source>
        <translation>Lancer le &amp;sondage</translation>
    </message>
    <message>
        <source>Ask the learners</source>
        <translation>Interroger les élèves</translation>
    </message>
    <message>
        <source>Let nobody answer for the time being, or go on</source>
        <translation>Suspendre les réponses, ou les reprendre</translation>
    </message>
    <message>
        <source>S&amp;top poll</source>
        <translation>Arrê&amp;ter le sondage</translation>
    </message>
    <message>
        <source>Stop in 10 s</source>
        <translation>Arrêter dans 10 s</translation>
    </message>
    <message>
        <source>Give the learners ten seconds more</source>
        <translation>Laisser encore dix secondes aux élèves</translation>
    </message>
    <message>
        <source>Sho&amp;w results</source>
        <translation>Montrer &amp;les résultats</translation>
    </message>
    <message>
        <source>Show the learners how the poll came out</source>
        <translation>Montrer aux élèves le résultat du sondage</translation>
    </message>
    <message>
        <source>How many gave which answer</source>
        <translation>Combien ont donné quelle réponse</translation>
    </message>
    <message>
        <source>Answers</source>
        <translation>Réponses</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Vider</translation>
    </message>
    <message>
        <source>Take all questions out</source>
        <translation>Retirer toutes les questions</translation>
    </message>
    <message>
        <source>What each learner answered</source>
        <translation>Ce que chaque élève a répondu</translation>
    </message>
    <message>
        <source>Answers by learner</source>
        <translation>Réponses par élève</translation>
    </message>
</context>
</TS>
